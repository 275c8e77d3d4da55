// The kernels of the transform family: the logarithm by its accuracy, each level against the plain form bit by bit.
#include "ORVAcomplex_reference.h"
#include "fft/kernels/ORVAfft_kernels.h"
#include "support/bits.h"
#include "support/levels.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using namespace orva;
using support::bitsOf;
using support::sameBits;

namespace
{

constexpr uint32_t smallestNormal = 0x00800000, infinity = 0x7F800000;
constexpr float largestDecibels = 1e4f;

const FftKernels &plainKernels()
{
    return kernelsAt<FftKernels>(Level::plain);
}

std::vector<Level> everyLevel()
{
    std::vector<Level> levels = support::fasterLevels();
    levels.insert(levels.begin(), Level::plain);
    return levels;
}

// Decibels of four neighbouring bit patterns from `first` on, none held to a floor, against the steps of the logarithm
// and against the logarithm in double.
void checkDecibels(const FftKernels &kernels, uint32_t first)
{
    float power[4], decibels[4];
    for (uint32_t i = 0; i < 4; ++i)
        power[i] = std::bit_cast<float>(first + i);
    kernels.decibels(power, decibels, 4, {1.0f, 1.0f, -largestDecibels});
    for (uint32_t i = 0; i < 4; ++i) {
        if (!(power[i] > 0.0f)) { // the last of all patterns are not-a-number
            ASSERT_EQ(decibels[i], -largestDecibels);
            continue;
        }
        const float logarithm = reference::fastLog(power[i]);
        ASSERT_EQ(bitsOf(decibels[i]), bitsOf(logarithm * 0.4342944622039795f * 10.0f)) << power[i];
        if (first + i < smallestNormal || first + i >= infinity)
            continue;
        const double exact = std::log(static_cast<double>(power[i]));
        ASSERT_LE(std::abs(static_cast<double>(logarithm) - exact), 3.9e-6) << power[i];
        ASSERT_LE(std::abs(static_cast<double>(logarithm) - exact), 8.2e-8 * std::abs(exact)) << power[i];
        ASSERT_LE(std::abs(static_cast<double>(decibels[i]) - 10.0 / std::log(10.0) * exact), 7e-5)
            << power[i];
    }
}

// What `run` writes into a vector of `room` floats, `offset` floats from an aligned place; what it leaves stays a mark.
template <class Run> std::vector<float> written(size_t room, size_t offset, Run run)
{
    constexpr float mark = 12345.0f;
    std::vector<float> output(offset + room + 64, mark);
    run(output.data() + offset);
    return output;
}

} // namespace

TEST(FastLogarithm, HoldsItsBitsAndItsAccuracyOverEveryExponent)
{
    support::Random random;
    for (const Level level : everyLevel())
        for (uint32_t exponent = 0; exponent < 255; ++exponent)
            for (int i = 0; i < 300; ++i)
                checkDecibels(kernelsAt<FftKernels>(level),
                              (exponent << 23) |
                                  static_cast<uint32_t>(random.integer(exponent == 0 ? 1 : 0, 0x7FFFFC)));
}

TEST(FastLogarithm, HoldsThemWhereItsPiecesMeet)
{
    for (const Level level : everyLevel()) {
        const FftKernels &kernels = kernelsAt<FftKernels>(level);
        for (uint32_t exponent = 0; exponent < 255; ++exponent) {
            checkDecibels(kernels, (exponent << 23) + 0x007FFFFE);     // from one power of two to the next
            checkDecibels(kernels, (exponent << 23) | (0x3504F3 - 2)); // around the square root of one half
        }
        checkDecibels(kernels, 1);
        checkDecibels(kernels, smallestNormal - 2);
    }
}

TEST(FastLogarithm, OfSpecialValues)
{
    const float tiny = std::numeric_limits<float>::denorm_min(), normal = std::numeric_limits<float>::min();
    const float power[4] = {1.0f, std::numeric_limits<float>::infinity(), tiny, normal};
    for (const Level level : everyLevel()) {
        float y[4];
        kernelsAt<FftKernels>(level).decibels(power, y, 4, {1.0f, 1.0f, -largestDecibels});
        EXPECT_EQ(bitsOf(y[0]), bitsOf(0.0f));
        EXPECT_NEAR(y[1], 1280.0 * std::log10(2.0), 5e-5);
        EXPECT_EQ(y[2], y[3]);
        EXPECT_NEAR(y[3], 10.0 * std::log10(1.1754943508222875e-38), 5e-5);
    }
}

TEST(FftKernels, GiveTheBitsOfThePlainFormAtEverySizeAndAlignment)
{
    support::Random random;
    for (const Level level : support::fasterLevels()) {
        const FftKernels &fast = kernelsAt<FftKernels>(level);
        for (int32_t count = 0; count <= 300; ++count) {
            const auto size = static_cast<size_t>(count);
            const auto offset = static_cast<size_t>(random.integer(0, 15));
            const auto a = random.mixed(2 * size + offset);
            const auto b = random.mixed(2 * size + offset);
            const auto *first = reinterpret_cast<const ORVA_COMPLEX *>(a.data() + offset);
            const auto *second = reinterpret_cast<const ORVA_COMPLEX *>(b.data() + offset);
            const DecibelScale scale = {static_cast<float>(random.real(0.0, 2.0)),
                                        static_cast<float>(random.real(0.0, 2.0)),
                                        static_cast<float>(random.real(-300.0, 10.0))};
            const auto check = [&](const char *what, auto run) {
                const auto expected = written(2 * size, offset, [&](float *to) { run(plainKernels(), to); });
                const auto actual = written(2 * size, offset, [&](float *to) { run(fast, to); });
                EXPECT_TRUE(sameBits(actual, expected))
                    << what << " at " << nameOf(level) << ", count " << count;
            };
            check("powers", [&](const FftKernels &kernels, float *to) { kernels.powers(first, to, count); });
            check("products", [&](const FftKernels &kernels, float *to) {
                kernels.products(first, second, reinterpret_cast<ORVA_COMPLEX *>(to), count);
            });
            const int32_t grouped = count / 4 * 4;
            check("decibels", [&](const FftKernels &kernels, float *to) {
                kernels.decibels(a.data() + offset, to, grouped, scale);
            });
            check("decibels with an adjustment", [&](const FftKernels &kernels, float *to) {
                kernels.adjustedDecibels(a.data() + offset, b.data() + offset, to, grouped, scale);
            });
        }
    }
}

TEST(FftKernels, GiveThemWhereOutputAndInputAreOneOrOverlap)
{
    support::Random random;
    for (const Level level : support::fasterLevels()) {
        const FftKernels &fast = kernelsAt<FftKernels>(level);
        for (int32_t shift = -40; shift <= 40; ++shift) {
            constexpr int32_t count = 60;
            const auto start = random.mixed(2 * (count + 80));
            const auto other = random.mixed(2 * count);
            const auto run = [&](const FftKernels &kernels, bool isFirst) {
                auto values = start;
                auto *input = reinterpret_cast<ORVA_COMPLEX *>(values.data()) + 40;
                const auto *factor = reinterpret_cast<const ORVA_COMPLEX *>(other.data());
                kernels.products(isFirst ? input : factor, isFirst ? factor : input, input + shift, count);
                return values;
            };
            for (const bool isFirst : {true, false})
                EXPECT_TRUE(sameBits(run(fast, isFirst), run(plainKernels(), isFirst)))
                    << nameOf(level) << ", shifted by " << shift;
        }
        auto power = random.mixed(256);
        auto expected = power;
        plainKernels().decibels(expected.data(), expected.data(), 256, {1.0f, 1.0f, -120.0f});
        fast.decibels(power.data(), power.data(), 256, {1.0f, 1.0f, -120.0f});
        EXPECT_TRUE(sameBits(power, expected)) << nameOf(level);
    }
}
