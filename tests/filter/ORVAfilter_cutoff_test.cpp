// The bilinear transform, and the transforms to the cut-off of a low-pass or high-pass.
#include "filter/ORVAfilter_design.h"
#include "filter/ORVAfilter_design_reference.h"
#include "filter/ORVAfilter_lists.h"
#include "support/bits.h"

#include <limits>

using namespace orva;

using support::sameBits;

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

Lists prototype(const Approximation &approximation, double ws, double Ap, double As, int32_t order)
{
    Lists lists(order);
    EXPECT_EQ(
        approximation.design(1.0, ws, Ap, As, order, lists.poles.data(), lists.zeros.data(), &lists.gain), 1);
    return lists;
}

void makeDigital(int32_t order, Lists &lists)
{
    _ConvertAnalogProtoToDigital(order, lists.poles.data(), lists.zeros.data(), &lists.gain);
}

void moveTo(bool isHigh, int32_t order, float cutoff, Lists &lists)
{
    (isHigh ? _ConvertDigitalProtoToHP : _ConvertDigitalProtoToLP)(order, cutoff, lists.poles.data(),
                                                                   lists.zeros.data(), &lists.gain);
}

} // namespace

TEST(BilinearTransform, MapsRootsAndTheirDistancesAtFrequencyZero)
{
    // H(s) = 3 / ((s + 0.5)(s + 2)), zeros at infinity: |H(0)| = 3.
    Lists lists(2);
    lists.poles = {{-0.5, 0.0}, {-2.0, 0.0}};
    lists.zeros = {infinity, infinity};
    lists.gain = 3.0;
    makeDigital(2, lists);
    EXPECT_TRUE(near(lists.poles, {1.0 / 3.0, -1.0 / 3.0}, 1e-15));
    EXPECT_TRUE(begins(lists.zeros, {-1.0, -1.0}));
    EXPECT_NEAR(lists.gain * 4.0 / ((1.0 - 1.0 / 3.0) * (1.0 + 1.0 / 3.0)), 3.0, 1e-14);
}

TEST(BilinearTransform, TakesWhatIsInfiniteOrNotANumberAsOneRootAtInfinity)
{
    const double largest = std::numeric_limits<double>::max();
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (Root root : {Root(infinity, 0.0), Root(-infinity, 0.0), Root(0.0, infinity), Root(none, none),
                      Root(none, 0.0), Root(0.0, none), Root(largest, largest)}) {
        Lists lists(2);
        lists.poles = {{-1.0, 0.0}, {-1.0, 0.0}};
        lists.zeros = {root, {-3.0, 0.0}};
        lists.gain = 1.0;
        makeDigital(2, lists);
        EXPECT_EQ(lists.zeros[0], Root(-1.0, 0.0)) << root;
        EXPECT_EQ(lists.zeros[1], Root(-0.5, 0.0)) << root << " counted once";
        // Distances from z = 1: 2 at infinity, 1.5 for the zero, 1 for each pole; from s = 0: 3 and 1.
        EXPECT_EQ(lists.gain, 3.0 / (2.0 * 1.5)) << root;
    }
    Lists finite(1);
    finite.poles[0] = {-largest, 0.0};
    finite.zeros[0] = {infinity, 0.0};
    makeDigital(1, finite);
    EXPECT_EQ(finite.poles[0], Root(-1.0, 0.0)) << "mapped, and there by rounding";
}

TEST(BilinearTransform, KeepsPolesOutsideTheCircleOutside)
{
    Lists lists = prototype(_Chebyshev, -1, 1, -1, 5);
    makeDigital(5, lists);
    for (size_t k = 0; k < 3; ++k)
        EXPECT_GT(std::abs(lists.poles[k]), 1.0);
}

TEST(BilinearTransform, CountsAPairTwiceAndStopsAtTheOrder)
{
    Lists lists(3);
    lists.poles = {{-0.5, 0.5}, {-3.0, 0.0}, {-0.25, 0.0}};
    lists.zeros = {infinity, infinity, infinity};
    lists.gain = 1.0;
    makeDigital(3, lists);
    EXPECT_EQ(lists.poles[1], Root(-0.5, 0.0));
    EXPECT_EQ(lists.poles[2], Root(-0.25, 0.0)) << "after the third root";
    for (int32_t order : {0, -5}) {
        Lists untouched(1);
        untouched.gain = 5.0;
        makeDigital(order, untouched);
        EXPECT_TRUE(isUnwritten(untouched.poles, 0) && isUnwritten(untouched.zeros, 0));
        EXPECT_EQ(untouched.gain, 5.0);
    }
}

TEST(LowPassTransform, OfACutoffOfOneHalfLeavesThePoles)
{
    for (int32_t order = 1; order <= 12; ++order) {
        Lists lists = prototype(_Butterworth, -1, 3, -1, order);
        makeDigital(order, lists);
        const Lists before = lists;
        moveTo(false, order, 0.5f, lists);
        EXPECT_TRUE(begins(lists.poles, {before.poles.begin(), before.poles.begin() + (order + 1) / 2}));
        EXPECT_TRUE(begins(lists.zeros, before.zeros));
    }
}

TEST(LowPassTransform, MovesTheOriginToAlpha)
{
    // A root at 0 goes to alpha, or to -alpha for a high-pass; there beyond the circle and so to its reciprocal.
    const struct {
        bool isHigh;
        double alpha;
    } rows[] = {{false, 0.41421356}, {true, -2.41421356}};
    for (const auto &[isHigh, alpha] : rows) {
        Lists lists(1);
        lists.poles[0] = {0.0, 0.0};
        lists.zeros[0] = {-1.0, 0.0};
        lists.gain = 1.0;
        moveTo(isHigh, 1, 0.25f, lists);
        EXPECT_NEAR(lists.poles[0].real(), isHigh ? -1.0 / alpha : alpha, 5e-9);
        EXPECT_EQ(lists.poles[0].imag(), 0.0);
        EXPECT_NEAR(lists.zeros[0].real(), isHigh ? 1.0 : -1.0, 1e-15);
    }
}

TEST(HighPassTransform, OfACutoffOfOneHalfComesInThroughTheReflection)
{
    Lists lists = prototype(_Butterworth, -1, 3, -1, 4);
    makeDigital(4, lists);
    const Lists before = lists;
    moveTo(true, 4, 0.5f, lists);
    // alpha about -1.6e16: each root goes to -1/r, outside, and from there to -r.
    for (size_t k = 0; k < 2; ++k) {
        EXPECT_NEAR(lists.poles[k].real(), -before.poles[k].real(), 1e-12);
        EXPECT_NEAR(std::fabs(lists.poles[k].imag()), std::fabs(before.poles[k].imag()), 1e-12);
    }
}

TEST(CutoffTransforms, HaveTheBitsOfTheDefinition)
{
    support::Random random;
    const Approximation *tables[] = {&_Butterworth, &_Chebyshev, &_ChebyshevII, &_Elliptic};
    for (int repeat = 0; repeat < 2000; ++repeat) {
        const auto N = static_cast<int32_t>(random.integer(1, 16));
        const auto a = random.integer(0, 3);
        const bool isHigh = random.integer(0, 1) == 1;
        const double ws = random.real(1.01, 4.0);
        const auto cutoff = static_cast<float>(random.real(0.001, 1.999));
        Lists lists = prototype(*tables[a], ws, 1.0, 60.0, N);
        makeDigital(N, lists);
        const auto half = reference::digital(reference::prototype(static_cast<reference::Approximation>(a),
                                                                  reference::Demand{ws, 1.0, 60.0}, N));
        const auto title = testing::Message() << "approximation " << a << ", order " << N << ", high "
                                              << isHigh << ", " << cutoff;
        ASSERT_TRUE(begins(lists.poles, half.poles)) << title;
        ASSERT_TRUE(begins(lists.zeros, half.zeros)) << title;
        ASSERT_TRUE(sameBits(lists.gain, half.gain)) << title;
        moveTo(isHigh, N, cutoff, lists);
        const auto expected = reference::toCutoff(half, isHigh, cutoff);
        ASSERT_TRUE(begins(lists.poles, expected.poles)) << title;
        ASSERT_TRUE(begins(lists.zeros, expected.zeros)) << title;
        ASSERT_TRUE(sameBits(lists.gain, expected.gain)) << title;
    }
}
