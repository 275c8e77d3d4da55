// Straight lines, and the interval search that both evaluators share.
#include "support/bits.h"
#include "support/random.h"

#include <orva/ORVAinterpolate.h>

#include <limits>

using support::Random;
using support::sameBits;

namespace
{

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

// The last interval whose left point is not above xq, found by looking at every inner point.
size_t intervalByWalking(const std::vector<float> &x, float xq)
{
    size_t lo = 0;
    while (lo + 2 < x.size() && !(x[lo + 1] > xq))
        ++lo;
    return lo;
}

float line(const std::vector<float> &x, const std::vector<float> &y, float xq)
{
    const size_t lo = intervalByWalking(x, xq);
    const float run = x[lo + 1] - x[lo];
    const float rise = y[lo + 1] - y[lo];
    const float part = (xq - x[lo]) / run;
    return part * rise + y[lo];
}

float evaluate(const std::vector<float> &x, const std::vector<float> &y, float xq)
{
    return ORVAINTERPOLATE_Linear(x.data(), y.data(), static_cast<int32_t>(x.size()), xq);
}

} // namespace

TEST(LinearInterpolation, FollowsTheLineOfItsInterval)
{
    const std::vector<float> x = {0, 1, 3, 4}, y = {0, 10, 20, -20};
    struct {
        float xq, expected;
    } const cases[] = {{0.5f, 5}, {1, 10}, {2, 15}, {3, 20}, {3.5f, 0}, {4, -20}};
    for (const auto &[xq, expected] : cases)
        EXPECT_EQ(evaluate(x, y, xq), expected) << xq;
}

TEST(LinearInterpolation, GoesOnBeyondBothEnds)
{
    const std::vector<float> x = {0, 1, 3, 4}, y = {0, 10, 20, -20};
    EXPECT_EQ(evaluate(x, y, -2), -20);
    EXPECT_EQ(evaluate(x, y, 5), -60);
}

TEST(LinearInterpolation, NotANumberInGivesNotANumberOut)
{
    EXPECT_TRUE(std::isnan(evaluate({0, 1, 3}, {0, 10, 20}, notANumber)));
}

TEST(LinearInterpolation, OnePointGivesWhatAnIntervalOfNoWidthGives)
{
    EXPECT_TRUE(std::isnan(evaluate({2}, {7}, 2)));
    EXPECT_TRUE(std::isnan(evaluate({2}, {7}, 3))) << "infinity times a difference of zero";
}

TEST(LinearInterpolation, EqualAbscissaeDivideByZero)
{
    EXPECT_EQ(evaluate({1, 1}, {0, 5}, 2), std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(evaluate({1, 1}, {0, 5}, 1)));
}

TEST(LinearInterpolation, WithoutPointsNothingIsRead)
{
    EXPECT_TRUE(std::isnan(ORVAINTERPOLATE_Linear(nullptr, nullptr, 0, 1)));
    EXPECT_TRUE(std::isnan(ORVAINTERPOLATE_Linear(nullptr, nullptr, std::numeric_limits<int32_t>::min(), 1)));
}

TEST(LinearInterpolation, EqualsTheDefinitionBitForBit)
{
    Random random;
    for (int round = 0; round < 2000; ++round) {
        std::vector<float> x, y;
        float at = static_cast<float>(random.real(-5, 5));
        for (int64_t n = random.integer(2, 40); n > 0; --n) {
            x.push_back(at);
            y.push_back(static_cast<float>(random.real(-100, 100)));
            at += static_cast<float>(random.real(0.001, 2));
        }
        const auto point = static_cast<size_t>(random.integer(0, static_cast<int64_t>(x.size()) - 1));
        for (const float xq : {x[point], static_cast<float>(random.real(-10, 60)), random.anyFloat()})
            ASSERT_TRUE(sameBits(evaluate(x, y, xq), line(x, y, xq))) << xq << " among " << x.size();
    }
}
