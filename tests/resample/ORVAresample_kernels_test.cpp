// The kernels of resampling: each level against the plain form and against the definition, bit by bit.
#include "ORVAresample_reference.h"
#include "resample/ORVAresample_polyphase.h"
#include "resample/kernels/ORVAresample_kernels.h"
#include "support/bits.h"
#include "support/levels.h"
#include "support/random.h"

#include <limits>

using namespace orva;

namespace
{

using support::sameBits;

const Rates pairs[] = {{44100, 48000}, {48000, 44100}, {16000, 48000}, {48000, 16000}, {1, 1},  {1, 2},
                       {2, 1},         {7, 8},         {8, 7},         {9, 8},         {8, 9},  {17, 16},
                       {16, 17},       {1, 40},        {40, 1},        {3, 50},        {50, 3}, {147, 20},
                       {20, 147},      {5, 24},        {24, 5},        {96000, 11025}, {1, 8},  {1, 16},
                       {8, 1},         {1000, 7}};

const ResampleKernels &plainKernels()
{
    return kernelsAt<ResampleKernels>(Level::plain);
}

// Zeros of both signs, subnormals, the greatest numbers and noise.
float anyFinite(support::Random &random)
{
    switch (random.integer(0, 7)) {
    case 0:
        return random.integer(0, 1) == 0 ? 0.0f : -0.0f;
    case 1:
        return std::numeric_limits<float>::denorm_min() * static_cast<float>(random.integer(-9, 9));
    case 2:
        return std::numeric_limits<float>::max() * static_cast<float>(random.integer(-1, 1));
    default:
        return static_cast<float>(random.real(-1.0, 1.0));
    }
}

Floats anyFinites(support::Random &random, size_t count)
{
    Floats samples(count);
    for (float &x : samples)
        x = anyFinite(random);
    return samples;
}

float anyNonFinite(support::Random &random)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float each[] = {infinity, -infinity, std::numeric_limits<float>::quiet_NaN()};
    return each[random.integer(0, 2)];
}

struct FreePolyphase {
    void operator()(PolyphaseResampler *resampler) const
    {
        freePolyphase(resampler);
    }
};

// A level in force as long as this lives.
struct Forced {
    explicit Forced(Level level) : before(levelInForce())
    {
        EXPECT_TRUE(forceLevel(level));
    }
    ~Forced()
    {
        forceLevel(before);
    }
    Level before;
};

// One block from and to any alignment; nothing is written around the result.
Floats convertUnaligned(support::Random &random, ORVA_RESAMPLER *resampler, std::span<const float> input,
                        size_t expected)
{
    const auto from = static_cast<size_t>(random.integer(0, 7)),
               to = static_cast<size_t>(random.integer(1, 8));
    Floats in(from + input.size()), out(to + expected + 8, unwritten);
    std::copy(input.begin(), input.end(), in.begin() + static_cast<std::ptrdiff_t>(from));
    EXPECT_EQ(ORVA_Resample(resampler, in.data() + from, out.data() + to, static_cast<int32_t>(input.size())),
              static_cast<int32_t>(expected));
    for (size_t i = 0; i < out.size(); ++i) {
        if (i < to || i >= to + expected) {
            EXPECT_EQ(out[i], unwritten) << i << " of " << to << " + " << expected;
        }
    }
    return {out.begin() + static_cast<std::ptrdiff_t>(to),
            out.begin() + static_cast<std::ptrdiff_t>(to + expected)};
}

// A stream in blocks of any length and its flush, against the definition.
void compareStream(support::Random &random, Level level, Rates rates, int32_t order, bool finite)
{
    const bool compensates = random.integer(0, 1) == 1;
    SCOPED_TRACE(testing::Message() << nameOf(level) << ", " << rates << ", order " << order
                                    << ", compensates " << compensates);
    const Forced forced(level);
    const auto resampler = newResampler(rates, "order=" + std::to_string(order) +
                                                   "; delaycompensation=" + std::to_string(compensates));
    PlainPolyphase plain(rates, order, compensates);
    const int64_t longest = random.integer(1, 4) * random.integer(1, 4) * 20;
    for (int64_t left = 3 * plain.taps + 400, block = 0; left > 0; ++block) {
        auto input = anyFinites(random, static_cast<size_t>(random.integer(0, longest)));
        if (!finite && !input.empty() && block % 3 == 0)
            input[static_cast<size_t>(random.integer(0, std::ssize(input) - 1))] = anyNonFinite(random);
        const Floats expected = plain.run(input);
        ASSERT_TRUE(sameBits(convertUnaligned(random, resampler.get(), input, expected.size()), expected))
            << "block " << block << " of " << input.size();
        left -= std::ssize(input) + 1;
    }
    const auto room = static_cast<int32_t>(random.integer(0, plain.delay));
    ASSERT_TRUE(sameBits(flush(resampler.get(), room), plain.flush(room))) << "flush of " << room;
}

} // namespace

TEST(ResampleKernels, StreamsHaveTheBitsOfTheDefinitionAtEveryLevel)
{
    support::Random random;
    for (const Level level : support::fasterLevels())
        for (const Rates rates : pairs)
            for (const int64_t order : {random.integer(1, 3), random.integer(4, 10), random.integer(11, 40)})
                compareStream(random, level, rates, static_cast<int32_t>(order), true);
}

TEST(ResampleKernels, StreamsOfAnyRatesHaveTheBitsOfTheDefinitionAtEveryLevel)
{
    support::Random random;
    for (const Level level : support::fasterLevels())
        for (int i = 0; i < 60; ++i) {
            const Rates rates{static_cast<int32_t>(random.integer(1, 60)),
                              static_cast<int32_t>(random.integer(1, 60))};
            compareStream(random, level, rates, static_cast<int32_t>(random.integer(1, 30)), true);
        }
}

TEST(ResampleKernels, WhatIsNotFinitePassesAtEveryLevelAsInTheDefinition)
{
    support::Random random;
    for (const Level level : support::fasterLevels())
        for (const Rates rates : pairs)
            compareStream(random, level, rates, static_cast<int32_t>(random.integer(1, 20)), false);
}

TEST(ResampleKernels, SpansOfAnyLengthAreThoseOfThePlainForm)
{
    support::Random random;
    for (const Rates rates : pairs) {
        const std::unique_ptr<PolyphaseResampler, FreePolyphase> resampler(
            newPolyphase(rates.input, rates.output, static_cast<int32_t>(random.integer(4, 12)), false));
        ASSERT_NE(resampler, nullptr);
        const PolyphaseBank &bank = resampler->bank;
        for (int32_t i = 0; i <= 60; ++i) {
            const auto count = i < 45 ? i : static_cast<int32_t>(random.integer(45, 700));
            const int64_t first = random.integer(0, bank.up - 1);
            const int64_t newest = (first + count) * bank.down / bank.up;
            // No sample too many.
            const int64_t most = resampler->history + newest + 1 + resampler->ahead;
            const Floats noise = anyFinites(random, static_cast<size_t>(most));
            std::vector<double> samples(noise.begin(), noise.end());
            const bool finite = random.integer(0, 1) == 0;
            if (!finite)
                samples[static_cast<size_t>(random.integer(0, most - 1))] = anyNonFinite(random);
            const int64_t zeros = random.integer(0, 1) * random.integer(0, most);
            std::fill(samples.end() - zeros, samples.end(), 0.0);
            const OutputSpan span{.samples = samples.data() + resampler->history,
                                  .firstSample = 0,
                                  .firstOutput = first,
                                  .count = count,
                                  .zerosFrom = samples.data() + (most - zeros),
                                  .allFinite = finite};
            const auto length = static_cast<size_t>(count);
            for (const bool rounded : {false, true}) {
                Floats expected(length + 2, unwritten);
                const auto run = [&](const ResampleKernels &kernels, float *output) {
                    (rounded ? kernels.roundedSums : kernels.sums)(bank, span, output);
                };
                run(plainKernels(), expected.data() + 1);
                for (const Level level : support::fasterLevels()) {
                    Floats output(length + 2, unwritten);
                    run(kernelsAt<ResampleKernels>(level), output.data() + 1);
                    ASSERT_TRUE(sameBits(output, expected))
                        << nameOf(level) << ", " << rates << ", " << count << " from " << first;
                }
            }
        }
    }
}

TEST(ResampleKernels, BlocksAreWidenedAndNarrowedAsInThePlainForm)
{
    support::Random random;
    for (const Level level : support::fasterLevels()) {
        const ResampleKernels &kernels = kernelsAt<ResampleKernels>(level);
        for (int32_t count = 0; count <= 100; ++count)
            for (const size_t offset : {0, 1, 2, 3}) {
                const auto length = static_cast<size_t>(count);
                Floats input = anyFinites(random, length + offset);
                const bool finite = count == 0 || random.integer(0, 1) == 0;
                if (!finite)
                    input[offset + static_cast<size_t>(random.integer(0, count - 1))] = anyNonFinite(random);
                std::vector<double> wide(length + 2, 0.5);
                EXPECT_EQ(kernels.widen(input.data() + offset, wide.data() + 1, count), finite)
                    << nameOf(level) << ", " << count;
                EXPECT_EQ(plainKernels().widen(input.data() + offset, wide.data() + 1, 0), true);
                EXPECT_EQ(wide.front(), 0.5);
                EXPECT_EQ(wide.back(), 0.5);
                for (size_t i = 0; i < length; ++i)
                    ASSERT_TRUE(sameBits(wide[i + 1], static_cast<double>(input[offset + i])));

                for (double &x : wide)
                    x *= random.real(0.0, 1.5); // beyond the range of a float, and between its numbers
                Floats narrowed(length + 2, unwritten);
                kernels.narrow(wide.data() + 1, narrowed.data() + 1, count);
                EXPECT_EQ(narrowed.front(), unwritten);
                EXPECT_EQ(narrowed.back(), unwritten);
                for (size_t i = 0; i < length; ++i)
                    ASSERT_TRUE(sameBits(narrowed[i + 1], static_cast<float>(wide[i + 1])));
            }
    }
}
