// Each level of the kernels of time scaling against the plain form, bit by bit.
#include "solafs/kernels/ORVAsolafs_kernels.h"
#include "support/bits.h"
#include "support/levels.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <vector>

using namespace orva;
using support::Random;
using support::sameBits;

namespace
{

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float sentinel = 12345.0f;

const SolafsKernels &plainKernels()
{
    return kernelsAt<SolafsKernels>(Level::plain);
}

struct FreeFloats {
    void operator()(float *block) const
    {
        ::operator delete (block, std::align_val_t{64});
    }
};

// A search with memory of its own, in which whatever is not set is no number.
class OwnSearch
{
public:
    OwnSearch(int32_t points, int32_t candidates)
        : reference(static_cast<size_t>(points)), length(2 * (points - 1) + candidates),
          room((length + candidateGroup + 15) / 16 * 16), scoreRoom((candidates + 127) / 128 * 128),
          total((gridCopies + 1) * room + scoreRoom),
          memory(static_cast<float *>(
              ::operator new (static_cast<size_t>(total) * sizeof(float), std::align_val_t{64}))),
          search{points,
                 candidates,
                 reference.data(),
                 memory.get(),
                 memory.get() + gridCopies * room,
                 memory.get() + (gridCopies + 1) * room,
                 room}
    {
        std::fill_n(memory.get(), total, notANumber);
    }

    void expectTheWinnerOfThePlainForm(const std::vector<Level> &levels) const
    {
        const int32_t winner = plainKernels().bestCandidate(search);
        const std::vector<float> before(grid(), grid() + length);
        for (const Level level : levels) {
            ASSERT_EQ(kernelsAt<SolafsKernels>(level).bestCandidate(search), winner)
                << nameOf(level) << ", " << search.points << " points, " << search.candidates
                << " candidates";
            ASSERT_TRUE(sameBits(std::vector<float>(grid(), grid() + length), before)) << nameOf(level);
        }
    }

    float *grid() const
    {
        return memory.get();
    }

    std::vector<float> reference;
    int32_t length; // of the grid

private:
    int64_t room;
    int64_t scoreRoom;
    int64_t total;
    std::unique_ptr<float, FreeFloats> memory;

public:
    Search search;
};

void scale(float *samples, size_t count, float factor)
{
    for (size_t i = 0; i < count; ++i)
        samples[i] *= factor;
}

// The reference is the grid's at a random candidate, as it is or nearly so.
void copyReference(Random &random, OwnSearch &own)
{
    const int64_t candidate = random.integer(0, own.search.candidates - 1);
    for (size_t i = 0; i < own.reference.size(); ++i)
        own.reference[i] = own.grid()[candidate + gridPerPoint * static_cast<int64_t>(i)];
}

} // namespace

TEST(SolafsKernels, NoiseOfEverySizeAndLevelHasTheWinnerOfThePlainForm)
{
    Random random;
    const auto levels = support::fasterLevels();
    for (int32_t round = 0; round < 600 && !HasFailure(); ++round) {
        const auto points = static_cast<int32_t>(round < 80 ? 1 + round : random.integer(1, 150));
        OwnSearch own(points, static_cast<int32_t>(random.integer(1, 500)));
        const auto length = static_cast<size_t>(own.length);
        std::ranges::copy(random.noise(length), own.grid());
        std::ranges::copy(random.noise(own.reference.size()), own.reference.begin());
        if (random.integer(0, 1) == 0)
            copyReference(random, own);
        const float factors[] = {1.0f,   1e-3f,  1e-6f,    1e-9f, 1e-15f, 1e-20f, 1e-30f,
                                 1e-38f, 1e-42f, 32768.0f, 1e9f,  1e15f,  1e20f,  1e38f};
        scale(own.grid(), length, factors[random.integer(0, std::ssize(factors) - 1)]);
        scale(own.reference.data(), own.reference.size(),
              factors[random.integer(0, std::ssize(factors) - 1)]);
        own.expectTheWinnerOfThePlainForm(levels);
    }
}

TEST(SolafsKernels, CandidatesThatDifferInTheirLastBitsHaveTheWinnerOfThePlainForm)
{
    Random random;
    const auto levels = support::fasterLevels();
    for (int32_t round = 0; round < 1000 && !HasFailure(); ++round) {
        OwnSearch own(static_cast<int32_t>(random.integer(1, 100)),
                      static_cast<int32_t>(random.integer(1, 500)));
        const std::vector<float> period = random.noise(static_cast<size_t>(random.integer(1, 60)));
        const auto changes = random.integer(0, 20);
        for (int32_t g = 0; g < own.length; ++g)
            own.grid()[g] = period[static_cast<size_t>(g) % period.size()];
        for (int64_t change = 0; change < changes; ++change)
            own.grid()[random.integer(0, own.length - 1)] *= 1.0f + 0x1p-23f;
        const float loudness[] = {1.0f, 20000.0f, 1e-3f, 1e-5f, 1e-7f, 1e-9f};
        scale(own.grid(), static_cast<size_t>(own.length),
              loudness[random.integer(0, std::ssize(loudness) - 1)]);
        copyReference(random, own);
        own.expectTheWinnerOfThePlainForm(levels);
    }
}

TEST(SolafsKernels, AnyBitsHaveTheWinnerOfThePlainForm)
{
    Random random;
    const auto levels = support::fasterLevels();
    for (int32_t round = 0; round < 1000 && !HasFailure(); ++round) {
        OwnSearch own(static_cast<int32_t>(random.integer(1, 80)),
                      static_cast<int32_t>(random.integer(1, 500)));
        const int64_t rarity = random.integer(0, 3) == 0 ? 0 : random.integer(1, 300);
        const auto any = [&] {
            return random.integer(0, rarity) == 0 ? random.anyFloat()
                                                  : static_cast<float>(random.real(-1, 1));
        };
        std::generate_n(own.grid(), own.length, any);
        std::ranges::generate(own.reference, any);
        if (random.integer(0, 1) == 0)
            copyReference(random, own);
        own.expectTheWinnerOfThePlainForm(levels);
    }
}

TEST(SolafsKernels, SilenceAndEqualSamplesHaveTheWinnerOfThePlainForm)
{
    const auto levels = support::fasterLevels();
    for (const float heard : {0.0f, 0.25f, -0.25f})
        for (const float ahead : {0.0f, 0.25f, -0.25f})
            for (const int32_t points : {1, 7, 8, 9, 55}) {
                OwnSearch own(points, 440);
                std::ranges::fill(own.reference, heard);
                std::fill_n(own.grid(), own.length, ahead);
                own.expectTheWinnerOfThePlainForm(levels);
            }
}

TEST(SolafsKernels, EveryFourthSampleIsTakenAndNoneAfterTheLast)
{
    Random random;
    for (const Level level : support::fasterLevels())
        for (int32_t count = 0; count < 300; ++count) {
            const auto used = static_cast<size_t>(count == 0 ? 0 : 4 * (count - 1) + 1);
            std::vector<float> from(used);
            for (float &x : from)
                x = random.anyFloat();
            std::vector<float> to(static_cast<size_t>(count) + 20, sentinel);
            std::vector<float> expected = to;
            for (size_t i = 0; i < static_cast<size_t>(count); ++i)
                expected[i] = from[4 * i];
            kernelsAt<SolafsKernels>(level).takeEveryFourth(from.data(), to.data(), count);
            ASSERT_TRUE(sameBits(to, expected)) << nameOf(level) << ", " << count;
        }
}

TEST(SolafsKernels, CrossFadesHaveTheBitsOfThePlainForm)
{
    Random random;
    for (const Level level : support::fasterLevels())
        for (int32_t count = 0; count < 300; ++count) {
            const auto offset = static_cast<size_t>(random.integer(0, 17));
            const size_t end = offset + static_cast<size_t>(count);
            const bool isAny = random.integer(0, 1) == 0;
            const auto drawn = [&](size_t length) {
                std::vector<float> samples = random.noise(length);
                if (isAny)
                    std::ranges::generate(samples, [&] { return random.anyFloat(); });
                return samples;
            };
            const std::vector<float> ramp = drawn(end);
            const std::vector<float> next = drawn(end);
            std::vector<float> actual = drawn(end);
            actual.resize(end + 20, sentinel);
            std::vector<float> expected = actual;
            plainKernels().crossFade(ramp.data() + offset, next.data() + offset, expected.data() + offset,
                                     count);
            kernelsAt<SolafsKernels>(level).crossFade(ramp.data() + offset, next.data() + offset,
                                                      actual.data() + offset, count);
            ASSERT_TRUE(sameBits(actual, expected)) << nameOf(level) << ", " << count;
        }
}
