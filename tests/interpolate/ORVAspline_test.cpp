#include "support/bits.h"
#include "support/log.h"
#include "support/random.h"

#include <orva/ORVAspline.h>

#include <limits>

using support::Random;
using support::sameBits;

namespace
{

constexpr float natural = 1e30f;
constexpr float untouched = -77.0f;

struct Curve {
    std::vector<float> x, y;
};

std::vector<float> estimate(const Curve &curve, float yp1, float ypn)
{
    std::vector<float> y2(curve.x.size(), untouched);
    ORVASPLINE_Estimate(curve.x.data(), curve.y.data(), static_cast<int32_t>(curve.x.size()), yp1, ypn,
                        y2.data());
    return y2;
}

float evaluate(const Curve &curve, const std::vector<float> &y2, float xq)
{
    return ORVASPLINE_Interpolate(curve.x.data(), curve.y.data(), y2.data(),
                                  static_cast<int32_t>(curve.x.size()), xq);
}

Curve randomCurve(Random &random, int64_t points)
{
    Curve curve;
    float at = static_cast<float>(random.real(-3, 3));
    for (; points > 0; --points) {
        curve.x.push_back(at);
        curve.y.push_back(static_cast<float>(random.real(-10, 10)));
        at += static_cast<float>(random.real(0.05, 2));
    }
    return curve;
}

float narrow(double v)
{
    return static_cast<float>(v);
}

// The estimate, one rounding a line. Every operation on floats stands alone so that each result is a float.
std::vector<float> estimateByDefinition(const Curve &curve, float yp1, float ypn)
{
    const auto &[x, y] = curve;
    const size_t n = x.size();
    std::vector<float> u(n, 0.0f), y2(n, 0.0f);
    if (!(double{yp1} > 9.9e+29)) {
        const float h = x[1] - x[0];
        const float rise = y[1] - y[0];
        const float s = rise / h;
        const float difference = s - yp1;
        y2[0] = -0.5f;
        u[0] = narrow(double{difference} * (3.0 / double{h}));
    }
    for (size_t i = 1; i + 1 < n; ++i) {
        const float left = x[i] - x[i - 1];
        const float right = x[i + 1] - x[i];
        const float both = x[i + 1] - x[i - 1];
        const float sig = left / both;
        const float product = sig * y2[i - 1];
        const float p = product + 2.0f;
        y2[i] = narrow((double{sig} - 1.0) / double{p});
        const float riseRight = y[i + 1] - y[i];
        const float riseLeft = y[i] - y[i - 1];
        const float slopeRight = riseRight / right;
        const float slopeLeft = riseLeft / left;
        const float e = slopeRight - slopeLeft;
        const float carried = sig * u[i - 1];
        double value = double{e} * 6.0;
        value = value / double{both};
        value = value - double{carried};
        u[i] = narrow(value / double{p});
    }
    float qn = 0.0f, un = 0.0f;
    if (!(double{ypn} > 9.9e+29)) {
        const float h = x[n - 1] - x[n - 2];
        const float rise = y[n - 1] - y[n - 2];
        const float s = rise / h;
        const float difference = ypn - s;
        qn = 0.5f;
        un = narrow(double{difference} * (3.0 / double{h}));
    }
    const float byU = qn * u[n - 2];
    const float byY2 = qn * y2[n - 2];
    const float numerator = un - byU;
    y2[n - 1] = narrow(double{numerator} / (1.0 + double{byY2}));
    for (size_t k = n - 1; k-- > 0;) {
        const float product = y2[k] * y2[k + 1];
        y2[k] = product + u[k];
    }
    return y2;
}

float evaluateByDefinition(const Curve &curve, const std::vector<float> &y2, float xq)
{
    const auto &[x, y] = curve;
    size_t lo = 0;
    while (lo + 2 < x.size() && !(x[lo + 1] > xq))
        ++lo;
    const size_t hi = lo + 1;
    const float h = x[hi] - x[lo];
    const float toRight = x[hi] - xq;
    const float toLeft = xq - x[lo];
    const float a = toRight / h;
    const float b = toLeft / h;
    const float a3 = (a * a) * a;
    const float b3 = (b * b) * b;
    const float fromLeft = (a3 - a) * y2[lo];
    const float fromRight = (b3 - b) * y2[hi];
    const float sum = fromLeft + fromRight;
    const float c = sum * (h * h);
    const float lineLeft = a * y[lo];
    const float lineRight = b * y[hi];
    const float l = lineLeft + lineRight;
    return narrow(double{c} / 6.0 + double{l});
}

} // namespace

TEST(SplineEstimate, FewerThanTwoPointsAreRefusedWithOneMessage)
{
    const std::string text = "ORVASPLINE_Estimate: Spline estimation must have 2 or more points";
    for (const int32_t n : {1, 0, -1, std::numeric_limits<int32_t>::min()}) {
        support::Log log;
        const float x[] = {1, 2}, y[] = {3, 4};
        float y2[] = {untouched, untouched};
        ORVASPLINE_Estimate(x, y, n, natural, natural, y2);
        EXPECT_EQ(log.messages, (std::vector<support::Message>{{KTDEBUG_LEVEL_LOG, -1, text}})) << n;
        EXPECT_EQ(y2[0], untouched);
        EXPECT_EQ(y2[1], untouched);
    }
}

TEST(SplineEstimate, TwoPointsWithNaturalEndsAreTheLineThroughThem)
{
    const Curve curve = {{1, 3}, {10, 20}};
    const auto y2 = estimate(curve, natural, natural);
    EXPECT_EQ(y2, (std::vector<float>{0, 0}));
    for (const float xq : {0.0f, 1.0f, 1.5f, 3.0f, 7.0f})
        EXPECT_FLOAT_EQ(evaluate(curve, y2, xq), 10 + (xq - 1) * 5) << xq;
}

TEST(SplineEstimate, TwoPointsWithClampedEndsSolveTheTwoRows)
{
    const Curve curve = {{0, 2}, {1, 5}};
    const auto y2 = estimate(curve, 1.0f, -1.0f);
    const float u0 = (2.0f - 1.0f) * 1.5f;
    EXPECT_EQ(y2[0], -0.5f * y2[1] + u0);
    // First and last row by hand: un = (-1 - 2) * 1.5, y2[1] = (un - u0 / 2) / (1 - 1/4)
    EXPECT_FLOAT_EQ(y2[1], (-4.5f - 0.75f) / 0.75f);
}

TEST(SplineEstimate, TheLimitOfNaturalLiesBetweenTwoNeighbouringFloats)
{
    const Curve curve = {{0, 1, 2}, {0, 1, 0}};
    const float above = 9.9e29f;
    const float below = std::nextafter(above, 0.0f);
    ASSERT_GT(double{above}, 9.9e+29);
    ASSERT_LT(double{below}, 9.9e+29);
    EXPECT_EQ(estimate(curve, above, natural), estimate(curve, natural, natural));
    EXPECT_EQ(estimate(curve, natural, above), estimate(curve, natural, natural));
    EXPECT_LT(estimate(curve, below, natural)[0], -1e29f);
    EXPECT_GT(estimate(curve, natural, below)[2], 1e29f);
}

TEST(SplineEstimate, EndsAreIndependent)
{
    const Curve curve = {{0, 1, 2, 3}, {0, 1, 4, 9}};
    const auto clampedFirst = estimate(curve, 0.0f, natural);
    EXPECT_NE(clampedFirst.front(), 0.0f);
    EXPECT_EQ(clampedFirst.back(), 0.0f);
    const auto clampedLast = estimate(curve, natural, 6.0f);
    EXPECT_EQ(clampedLast.front(), 0.0f);
    EXPECT_NE(clampedLast.back(), 0.0f);
}

TEST(SplineEstimate, ReproducesACubicWithItsOwnEndSlopes)
{
    // y = x^3 - 2 x: second derivative 6 x, slopes 3 x^2 - 2.
    Curve curve;
    for (const float x : {-2.0f, -1.0f, 0.5f, 1.0f, 3.0f}) {
        curve.x.push_back(x);
        curve.y.push_back(x * x * x - 2 * x);
    }
    const auto y2 = estimate(curve, 10.0f, 25.0f);
    for (size_t i = 0; i < y2.size(); ++i)
        EXPECT_NEAR(y2[i], 6 * curve.x[i], 1e-4) << i;
    for (const float xq : {-1.5f, 0.0f, 0.75f, 2.0f})
        EXPECT_NEAR(evaluate(curve, y2, xq), xq * xq * xq - 2 * xq, 1e-4) << xq;
}

TEST(SplineEstimate, EqualsTheDefinitionBitForBit)
{
    Random random;
    for (int round = 0; round < 3000; ++round) {
        const Curve curve = randomCurve(random, random.integer(2, 50));
        const float yp1 = random.integer(0, 1) ? natural : static_cast<float>(random.real(-20, 20));
        const float ypn = random.integer(0, 1) ? natural : static_cast<float>(random.real(-20, 20));
        ASSERT_TRUE(sameBits(estimate(curve, yp1, ypn), estimateByDefinition(curve, yp1, ypn)))
            << curve.x.size() << " points, slopes " << yp1 << ", " << ypn;
    }
}

// Tables that are swept in halves, and what may keep the halves from meeting.
TEST(SplineEstimate, LongTablesEqualTheDefinitionBitForBit)
{
    Random random;
    for (int round = 0; round < 300; ++round) {
        Curve curve = randomCurve(random, random.integer(90, 700));
        const auto kind = random.integer(0, 4);
        for (size_t i = 0; i < curve.x.size(); ++i) {
            if (kind == 1)
                curve.y[i] = random.anyFloat();
            if (kind == 2)
                curve.x[i] = random.anyFloat();
            if (kind == 3) // nothing to solve: each difference of slopes is zero
                curve.y[i] = 0.0f;
            if (kind == 4) // widths that grow and shrink by orders
                curve.x[i] = static_cast<float>(i) + (i % 7 == 0 ? 0.9999f : 0.0f);
        }
        const float yp1 = random.integer(0, 1) ? natural : static_cast<float>(random.real(-20, 20));
        const float ypn = random.integer(0, 1) ? natural : static_cast<float>(random.real(-20, 20));
        ASSERT_TRUE(sameBits(estimate(curve, yp1, ypn), estimateByDefinition(curve, yp1, ypn)))
            << curve.x.size() << " points of kind " << kind << ", slopes " << yp1 << ", " << ypn;
    }
}

TEST(SplineInterpolate, PassesThroughItsPoints)
{
    Random random;
    const Curve curve = randomCurve(random, 12);
    const auto y2 = estimate(curve, natural, 1.0f);
    for (size_t i = 0; i < curve.x.size(); ++i)
        EXPECT_NEAR(evaluate(curve, y2, curve.x[i]), curve.y[i], 1e-5) << i;
}

TEST(SplineInterpolate, GoesOnBeyondBothEnds)
{
    const Curve curve = {{0, 1, 2}, {0, 1, 8}}; // y2 as of x^3
    const std::vector<float> y2 = {0, 6, 12};
    EXPECT_FLOAT_EQ(evaluate(curve, y2, 3.0f), 27.0f);
    EXPECT_FLOAT_EQ(evaluate(curve, y2, -2.0f), -8.0f);
}

TEST(SplineInterpolate, NotANumberInGivesNotANumberOut)
{
    EXPECT_TRUE(
        std::isnan(evaluate({{0, 1, 2}, {0, 1, 8}}, {0, 6, 12}, std::numeric_limits<float>::quiet_NaN())));
}

TEST(SplineInterpolate, OnePointGivesWhatAnIntervalOfNoWidthGives)
{
    EXPECT_TRUE(std::isnan(evaluate({{2}, {7}}, {0}, 2)));
    EXPECT_TRUE(std::isnan(evaluate({{2}, {7}}, {0}, 3)));
}

TEST(SplineInterpolate, WithoutPointsNothingIsRead)
{
    EXPECT_TRUE(std::isnan(ORVASPLINE_Interpolate(nullptr, nullptr, nullptr, 0, 1)));
    EXPECT_TRUE(std::isnan(ORVASPLINE_Interpolate(nullptr, nullptr, nullptr, -5, 1)));
}

TEST(SplineInterpolate, EqualsTheDefinitionBitForBit)
{
    Random random;
    for (int round = 0; round < 3000; ++round) {
        const Curve curve = randomCurve(random, random.integer(2, 50));
        const auto y2 = estimate(curve, natural, static_cast<float>(random.real(-5, 5)));
        const auto point = static_cast<size_t>(random.integer(0, static_cast<int64_t>(curve.x.size()) - 1));
        for (const float xq : {curve.x[point], static_cast<float>(random.real(-10, 60)), random.anyFloat()})
            ASSERT_TRUE(sameBits(evaluate(curve, y2, xq), evaluateByDefinition(curve, y2, xq))) << xq;
    }
}
