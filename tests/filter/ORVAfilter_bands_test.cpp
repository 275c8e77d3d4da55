// The transforms of the digital prototype to a band.
#include "common/numbers.h"
#include "filter/ORVAfilter_design.h"
#include "filter/ORVAfilter_design_reference.h"
#include "filter/ORVAfilter_lists.h"
#include "support/bits.h"

#include <algorithm>

using namespace orva;

using support::sameBits;

namespace
{

using Transform = int32_t (*)(int32_t, float, float, Root *, Root *, double *);

// A digital prototype with the room of a band.
Lists prototype(const Approximation &approximation, double ws, double Ap, double As, int32_t order)
{
    Lists lists(2 * order);
    EXPECT_EQ(
        approximation.design(1.0, ws, Ap, As, order, lists.poles.data(), lists.zeros.data(), &lists.gain), 1);
    _ConvertAnalogProtoToDigital(order, lists.poles.data(), lists.zeros.data(), &lists.gain);
    return lists;
}

std::vector<Root> entries(const std::vector<Root> &list, size_t count)
{
    return {list.begin(), list.begin() + static_cast<std::ptrdiff_t>(count)};
}

void move(Transform transform, int32_t order, float f1, float f2, Lists &lists)
{
    EXPECT_EQ(transform(order, f1, f2, lists.poles.data(), lists.zeros.data(), &lists.gain), 1);
}

// Of a filter of the first `poleCount` and `zeroCount` entries, at f on the scale where 1 is half the sampling rate.
double attenuation(const Lists &lists, size_t poleCount, size_t zeroCount, double f)
{
    const Root z = std::polar(1.0, f * pi);
    double magnitude = lists.gain;
    for (Root zero : entries(lists.zeros, zeroCount))
        magnitude *= distance(z, zero);
    for (Root pole : entries(lists.poles, poleCount))
        magnitude /= distance(z, pole);
    return -20.0 * std::log10(magnitude);
}

double largestModulus(const std::vector<Root> &roots)
{
    double largest = 0.0;
    for (Root root : roots)
        largest = std::max(largest, std::abs(root));
    return largest;
}

} // namespace

TEST(BandPassTransform, OfTheWorkedButterworthHasItsAttenuations)
{
    Lists lists = prototype(_Butterworth, -1, 1, -1, 3);
    move(_ConvertDigitalProtoToBP, 3, 0.2f, 0.4f, lists);
    EXPECT_NEAR(attenuation(lists, 3, 6, 0.2), 1.0, 1e-6);
    EXPECT_NEAR(attenuation(lists, 3, 6, 0.4), 1.0, 1e-6);
    EXPECT_NEAR(attenuation(lists, 3, 6, 0.3), 0.0, 1e-3);
    EXPECT_NEAR(largestModulus(entries(lists.poles, 3)), 0.87451, 5e-6);
    EXPECT_TRUE(isUnwritten(lists.poles, 3)) << "three entries, the real pole has become one";
    EXPECT_TRUE(begins(lists.zeros, {1.0, -1.0, 1.0, -1.0, 1.0, -1.0}));
}

TEST(BandRejectTransform, OfTheWorkedButterworthHasItsAttenuations)
{
    Lists lists = prototype(_Butterworth, -1, 1, -1, 3);
    move(_ConvertDigitalProtoToBR, 3, 0.2f, 0.4f, lists);
    EXPECT_NEAR(attenuation(lists, 3, 3, 0.2), 1.0, 1e-6);
    EXPECT_NEAR(attenuation(lists, 3, 3, 0.4), 1.0, 1e-6);
    EXPECT_NEAR(attenuation(lists, 3, 3, 0.3), 50.47, 5e-3);
    EXPECT_TRUE(isUnwritten(lists.poles, 3));
    EXPECT_LT(largestModulus(entries(lists.poles, 3)), 1.0);
    // One entry for each zero at -1, all equal: the pair at the centre of the band.
    const Root centre = lists.zeros[0];
    EXPECT_NEAR(centre.real(), 0.6180, 5e-5);
    EXPECT_NEAR(std::fabs(centre.imag()), 0.7862, 5e-5);
    EXPECT_NEAR(std::abs(centre), 1.0, 1e-15);
    EXPECT_TRUE(begins(lists.zeros, {centre, centre, centre}));
}

TEST(BandPassTransform, BringsThePolesOfAChebyshevInside)
{
    for (Transform transform : {_ConvertDigitalProtoToBP, _ConvertDigitalProtoToBR}) {
        Lists lists = prototype(_Chebyshev, -1, 1, -1, 4);
        for (size_t k = 0; k < 2; ++k)
            EXPECT_GT(std::abs(lists.poles[k]), 1.0) << "before";
        move(transform, 4, 0.2f, 0.4f, lists);
        EXPECT_LT(largestModulus(entries(lists.poles, 4)), 1.0);
        const size_t zeroCount = transform == _ConvertDigitalProtoToBP ? 8 : 4;
        EXPECT_NEAR(attenuation(lists, 4, zeroCount, static_cast<double>(0.2f)), 1.0, 1e-9);
        EXPECT_NEAR(attenuation(lists, 4, zeroCount, static_cast<double>(0.4f)), 1.0, 1e-9);
    }
}

TEST(BandPassTransform, OfAnEllipticKeepsItsZerosOnTheCircle)
{
    Lists lists = prototype(_Elliptic, 2, 1, 40, 4);
    move(_ConvertDigitalProtoToBP, 4, 0.2f, 0.4f, lists);
    EXPECT_TRUE(isUnwritten(lists.poles, 4) && isUnwritten(lists.zeros, 4));
    for (Root zero : entries(lists.zeros, 4)) {
        EXPECT_NEAR(std::abs(zero), 1.0, 1e-12);
        EXPECT_NE(zero.imag(), 0.0);
    }
}

TEST(BandPassTransform, TurnsAZeroAtMinusOneIntoExactlyOneAndMinusOne)
{
    for (float lower : {0.05f, 0.2f, 0.5f, 0.9f}) {
        Lists lists = prototype(_Chebyshev, -1, 1, -1, 5);
        move(_ConvertDigitalProtoToBP, 5, lower, lower + 0.05f, lists);
        for (size_t k = 0; k < 5; ++k) {
            EXPECT_EQ(lists.zeros[2 * k], Root(1.0, 0.0)) << lower;
            EXPECT_EQ(lists.zeros[2 * k + 1], Root(-1.0, 0.0)) << lower;
        }
    }
}

TEST(BandPassTransform, ARealRootGivesOneComplexEntryOrTwoRealOnes)
{
    const auto single = [](double p, float lower, float upper) {
        Lists lists(2);
        lists.gain = 1.0;
        lists.poles[0] = {p, 0.0};
        lists.zeros[0] = {-1.0, 0.0};
        move(_ConvertDigitalProtoToBP, 1, lower, upper, lists);
        return lists;
    };
    const Lists narrow = single(0.5, 0.2f, 0.25f);
    EXPECT_NE(narrow.poles[0].imag(), 0.0);
    EXPECT_TRUE(isUnwritten(narrow.poles, 1));
    const Lists wide = single(-0.9, 0.1f, 0.9f);
    EXPECT_EQ(wide.poles[0].imag(), 0.0);
    EXPECT_EQ(wide.poles[1].imag(), 0.0);
    EXPECT_LT(wide.poles[1].real(), wide.poles[0].real())
        << "the root with the positive square root comes first";
}

TEST(BandTransforms, ReplaceOnlyARootStrictlyOutsideTheCircle)
{
    EXPECT_EQ(reflected({1.0, 0.0}), Root(1.0, 0.0));
    EXPECT_EQ(reflected({0.0, -1.0}), Root(0.0, -1.0));
    EXPECT_EQ(reflected({0.6, 0.8}), Root(0.6, 0.8));
    EXPECT_EQ(reflected({2.0, 0.0}), Root(0.5, 0.0));
    EXPECT_EQ(reflected({0.0, 4.0}), Root(0.0, -0.25)) << "the sign of the imaginary part turns";
}

TEST(BandTransforms, LeaveEverythingAsItIsForNoRoots)
{
    for (Transform transform : {_ConvertDigitalProtoToBP, _ConvertDigitalProtoToBR})
        for (int32_t order : {0, -1, -1000000}) {
            Lists lists(2);
            lists.gain = 77.0;
            move(transform, order, 0.2f, 0.4f, lists);
            EXPECT_EQ(lists.gain, 77.0);
            EXPECT_TRUE(isUnwritten(lists.poles, 0) && isUnwritten(lists.zeros, 0));
        }
}

TEST(BandTransforms, HaveTheBitsOfTheDefinition)
{
    support::Random random;
    const Approximation *tables[] = {&_Butterworth, &_Chebyshev, &_ChebyshevII, &_Elliptic};
    for (int repeat = 0; repeat < 2000; ++repeat) {
        const auto N = static_cast<int32_t>(random.integer(1, 16));
        const auto a = random.integer(0, 3);
        const bool isReject = random.integer(0, 1) == 1;
        const double ws = random.real(1.01, 4.0);
        const auto lower = static_cast<float>(random.real(0.01, 0.9));
        const auto upper = static_cast<float>(random.real(static_cast<double>(lower) + 0.001, 0.99));
        Lists lists = prototype(*tables[a], ws, 1.0, 60.0, N);
        move(isReject ? _ConvertDigitalProtoToBR : _ConvertDigitalProtoToBP, N, lower, upper, lists);
        const auto demand = reference::Demand{ws, 1.0, 60.0};
        const auto expected = reference::toBand(
            reference::digital(reference::prototype(static_cast<reference::Approximation>(a), demand, N)),
            isReject, lower, upper);
        const auto title = testing::Message() << "approximation " << a << ", order " << N << ", reject "
                                              << isReject << ", " << lower << " to " << upper;
        ASSERT_TRUE(begins(lists.poles, expected.poles)) << title;
        ASSERT_TRUE(begins(lists.zeros, expected.zeros)) << title;
        ASSERT_TRUE(sameBits(lists.gain, expected.gain)) << title;
    }
}

TEST(BandTransforms, WriteNoFurtherThanTwoEntriesForEachRoot)
{
    // All roots real, and all of them wide: each becomes two.
    for (Transform transform : {_ConvertDigitalProtoToBP, _ConvertDigitalProtoToBR}) {
        constexpr int32_t order = 9;
        Lists lists(2 * order + 4);
        lists.gain = 1.0;
        for (size_t k = 0; k < order; ++k)
            lists.poles[k] = lists.zeros[k] = {transform == _ConvertDigitalProtoToBP ? -1.0 : 1.0, 0.0};
        move(transform, order, 0.2f, 0.4f, lists);
        EXPECT_TRUE(isUnwritten(lists.poles, 2 * order) && isUnwritten(lists.zeros, 2 * order));
        EXPECT_FALSE(std::isnan(lists.poles[2 * order - 1].real()));
    }
}
