// The fast logarithm: its bits against a plain reference, its accuracy against the logarithm in double.
#include "fft/ORVAcomplex_log.h"

#include "ORVAcomplex_reference.h"
#include "support/bits.h"
#include "support/random.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using support::bitsOf;

namespace
{

constexpr uint32_t smallestNormal = 0x00800000, infinity = 0x7F800000;

// Compares four neighbouring bit patterns from `first` on, one a lane.
void compare(uint32_t first)
{
    Float4 x = {};
    for (uint32_t lane = 0; lane < 4; ++lane)
        x[lane] = std::bit_cast<float>(first + lane);
    const Float4 y = fastLog(x);
    for (uint32_t lane = 0; lane < 4; ++lane) {
        const float value = x[lane], result = y[lane];
        ASSERT_EQ(bitsOf(result), bitsOf(reference::fastLog(value))) << value;
        if (first + lane < smallestNormal || first + lane >= infinity)
            continue;
        const double exact = std::log(static_cast<double>(value));
        ASSERT_LE(std::abs(static_cast<double>(result) - exact), 3.9e-6) << value;
        ASSERT_LE(std::abs(static_cast<double>(result) - exact), 8.2e-8 * std::abs(exact)) << value;
        const float decibels = result * 0.4342944622039795f * 10.0f;
        ASSERT_LE(std::abs(static_cast<double>(decibels) - 10.0 / std::log(10.0) * exact), 7e-5) << value;
    }
}

} // namespace

TEST(FastLogarithm, HoldsItsBitsAndItsAccuracyOverEveryExponent)
{
    support::Random random;
    for (uint32_t exponent = 0; exponent < 255; ++exponent)
        for (int i = 0; i < 300; ++i)
            compare((exponent << 23) |
                    static_cast<uint32_t>(random.integer(exponent == 0 ? 1 : 0, 0x7FFFFC)));
}

TEST(FastLogarithm, HoldsThemWhereItsPiecesMeet)
{
    for (uint32_t exponent = 0; exponent < 255; ++exponent) {
        compare((exponent << 23) + 0x007FFFFE);     // the end of one power of two and the start of the next
        compare((exponent << 23) | (0x3504F3 - 2)); // around the square root of one half
    }
    compare(1);
    compare(smallestNormal - 2);
}

TEST(FastLogarithm, OfSpecialValues)
{
    const float tiny = std::numeric_limits<float>::denorm_min(), normal = std::numeric_limits<float>::min();
    const Float4 y = fastLog(Float4{1.0f, std::numeric_limits<float>::infinity(), tiny, normal});
    EXPECT_EQ(bitsOf(y[0]), bitsOf(0.0f));
    EXPECT_NEAR(y[1], 128.0 * std::log(2.0), 4e-6);
    EXPECT_EQ(y[2], y[3]);
    EXPECT_NEAR(y[3], std::log(1.1754943508222875e-38), 4e-6);
}

TEST(FastLogarithm, LanesDoNotTouchEachOther)
{
    support::Random random;
    for (int i = 0; i < 2000; ++i) {
        Float4 x = {};
        for (int lane = 0; lane < 4; ++lane)
            x[lane] = random.anyFloat();
        const Float4 y = fastLog(x);
        for (int lane = 0; lane < 4; ++lane) {
            const float value = x[lane], result = y[lane];
            if (value > 0.0f) {
                ASSERT_EQ(bitsOf(result), bitsOf(reference::fastLog(value))) << value;
            }
        }
    }
}
