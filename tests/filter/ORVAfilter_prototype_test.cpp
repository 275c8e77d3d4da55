// Order estimates and roots of the Butterworth and Chebyshev prototypes.
#include "common/numbers.h"
#include "filter/ORVAfilter_design.h"
#include "filter/ORVAfilter_design_reference.h"
#include "filter/ORVAfilter_lists.h"
#include "support/bits.h"
#include "support/log.h"

#include <limits>

using namespace orva;

using support::error;
using support::Log;
using support::Message;
using support::sameBits;

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int32_t lowest = std::numeric_limits<int32_t>::min();

} // namespace

TEST(FilterOrder, IsThatOfTheWorkedSpecifications)
{
    const struct {
        double ws, Ap, As;
        int32_t butterworth, chebyshev, elliptic;
    } rows[] = {{2, 1, 40, 8, 5, 4}, {1.5, 3, 60, 18, 8, 6}, {1.2, 0.5, 50, 38, 13, 7}};
    for (const auto &row : rows) {
        EXPECT_EQ(_ButterworthOrder(1.0, row.ws, row.Ap, row.As), row.butterworth) << row.ws;
        EXPECT_EQ(_ChebyshevOrder(1.0, row.ws, row.Ap, row.As), row.chebyshev) << row.ws;
        EXPECT_EQ(_ChebyshevIIOrder(1.0, row.ws, row.Ap, row.As), row.chebyshev) << row.ws;
        EXPECT_EQ(_EllipticOrder(1.0, row.ws, row.Ap, row.As), row.elliptic) << row.ws;
    }
    EXPECT_EQ(_ButterworthOrder(1.0, 2.0, 3.0, 60.0), 10);
}

TEST(FilterOrder, IsNoneWithoutASelectivityOrAnAttenuation)
{
    const double rows[][3] = {{0, 1, 40}, {-1, 1, 40}, {2, 0, 40}, {2, -1, 40}, {2, 1, 0}, {2, 1, -1}};
    for (const auto &[ws, Ap, As] : rows)
        for (const auto *table : {&_Butterworth, &_Chebyshev, &_ChebyshevII})
            EXPECT_EQ(table->order(1.0, ws, Ap, As), -1) << ws << ' ' << Ap << ' ' << As;
    EXPECT_EQ(_EllipticOrder(1.0, 2.0, 1.0, -1.0), lowest) << "loses against any requested order";
    EXPECT_EQ(_EllipticOrder(1.0, 2.0, 1.0, 0.0), lowest);
    EXPECT_GT(_EllipticOrder(1.0, -1.0, 3.0, 60.0), 0) << "has no guard";
}

TEST(FilterOrder, OfWhatIsNoNumberOrTooLargeIsNeverPositive)
{
    for (const auto *table : {&_Butterworth, &_Chebyshev, &_ChebyshevII}) {
        EXPECT_EQ(table->order(1.0, 2.0, 1.0, 1e9), lowest + 1) << "infinite";
        EXPECT_EQ(table->order(1.0, 1.0, 1.0, 40.0), lowest + 1) << "over zero";
        EXPECT_EQ(table->order(1.0, std::nextafter(1.0, 2.0), 1e-9, 1000.0), lowest + 1)
            << "beyond the range";
    }
    EXPECT_EQ(_ChebyshevOrder(1.0, 2.0, 40.0, 1.0), lowest + 1) << "not a number";
    EXPECT_EQ(_EllipticOrder(1.0, 2.0, 1.0, 1e9), lowest);
    EXPECT_EQ(_EllipticOrder(1.0, 0.5, 1.0, 40.0), lowest);
}

TEST(FilterOrder, AnIntegerGainsOne)
{
    // As and Ap alike: the quotient is exactly 0.
    EXPECT_EQ(_ButterworthOrder(1.0, 2.0, 3.0, 3.0), 1);
    EXPECT_EQ(_ChebyshevOrder(1.0, 2.0, 3.0, 3.0), 1);
    EXPECT_EQ(_ChebyshevIIOrder(1.0, 2.0, 3.0, 3.0), 1);
}

TEST(FilterOrder, IsThatOfTheDefinitionForAnySpecification)
{
    support::Random random;
    const Approximation *tables[] = {&_Butterworth, &_Chebyshev, &_ChebyshevII, &_Elliptic};
    for (int repeat = 0; repeat < 20000; ++repeat) {
        const reference::Demand d = {random.real(-0.5, 4.0), random.real(-0.2, 6.0),
                                     random.real(-5.0, 120.0)};
        for (int a = 0; a < 4; ++a)
            ASSERT_EQ(tables[a]->order(1.0, d.ws, d.Ap, d.As),
                      reference::estimate(static_cast<reference::Approximation>(a), d))
                << a << ": " << d.ws << ' ' << d.Ap << ' ' << d.As;
    }
}

TEST(FilterTruncation, GoesTowardZeroAndGivesTheLowestIntegerOutsideTheRange)
{
    const struct {
        double x;
        int32_t integer;
    } rows[] = {
        {0.0, 0},
        {0.99, 0},
        {-0.99, 0},
        {2.9, 2},
        {-2.9, -2},
        {2147483647.0, 2147483647},
        {2147483647.9, 2147483647},
        {2147483648.0, lowest},
        {-2147483648.0, lowest},
        {-2147483648.9, lowest},
        {-2147483649.0, lowest},
        {1e300, lowest},
        {infinity, lowest},
        {-infinity, lowest},
        {std::numeric_limits<double>::quiet_NaN(), lowest},
    };
    for (const auto &[x, integer] : rows)
        EXPECT_EQ(truncatedOrLowest(x), integer) << x;
}

TEST(FilterPrototype, HasTheWorkedRoots)
{
    const struct {
        const char *title;
        PrototypeDesign design;
        double ws, Ap, As;
        std::vector<Root> poles, zeros;
        double gain, tolerance;
    } rows[] = {
        {"Butterworth",
         _ButterworthDesign,
         2,
         3,
         -1,
         {{-0.50040, 0.86671}, {-1.00079, 0.0}},
         {infinity, infinity, infinity},
         1.00238,
         5e-6},
        {"Chebyshev",
         _ChebyshevDesign,
         2,
         1,
         -1,
         {{0.24709, 0.96600}, {0.49417, 0.0}},
         {infinity, infinity, infinity},
         0.49131,
         5e-6},
        {"Chebyshev II",
         _ChebyshevIIDesign,
         2,
         1,
         40,
         {{-0.32230, 0.59187}, {0.70460, 0.0}},
         {{0.0, 2.30940}, infinity},
         0.060003,
         5e-7},
        {"Chebyshev II without a stop edge",
         _ChebyshevIIDesign,
         -1,
         1,
         40,
         {{-0.60121, 1.10405}, {1.31434, 0.0}},
         {{0.0, 4.30789}, infinity},
         0.111928,
         5e-7},
    };
    for (const auto &row : rows) {
        Lists lists(3);
        ASSERT_EQ(
            row.design(1.0, row.ws, row.Ap, row.As, 3, lists.poles.data(), lists.zeros.data(), &lists.gain),
            1);
        EXPECT_TRUE(near(lists.poles, row.poles, 5e-6)) << row.title;
        EXPECT_TRUE(near(lists.zeros, row.zeros, 5e-6)) << row.title;
        EXPECT_TRUE(isUnwritten(lists.poles, row.poles.size())) << row.title;
        EXPECT_TRUE(isUnwritten(lists.zeros, row.zeros.size())) << row.title;
        EXPECT_NEAR(lists.gain, row.gain, row.tolerance) << row.title;
    }
}

TEST(FilterPrototype, OfOrderOneIsARealPole)
{
    const double eps = std::sqrt(std::pow(10.0, 0.2) - 1.0); // Ap = 2
    const struct {
        const char *title;
        PrototypeDesign design;
        double pole;
    } rows[] = {
        {"Butterworth", _ButterworthDesign, -std::pow(static_cast<double>(static_cast<float>(eps)), -1.0)},
        {"Chebyshev", _ChebyshevDesign, std::sinh(std::asinh(1.0 / eps))},
        {"Chebyshev II", _ChebyshevIIDesign,
         2.0 / std::sinh(std::asinh(std::sqrt(std::pow(10.0, 4.0) - 1.0)))},
    };
    for (const auto &row : rows) {
        Lists lists(1);
        ASSERT_EQ(row.design(1.0, 2.0, 2.0, 40.0, 1, lists.poles.data(), lists.zeros.data(), &lists.gain), 1);
        EXPECT_NEAR(lists.poles[0].real(), row.pole, 1e-15) << row.title;
        EXPECT_EQ(lists.poles[0].imag(), 0.0) << row.title;
        EXPECT_EQ(lists.zeros[0], Root(infinity, 0.0)) << row.title;
    }
}

TEST(FilterPrototype, HasTheBitsOfTheDefinition)
{
    support::Random random;
    const Approximation *tables[] = {&_Butterworth, &_Chebyshev, &_ChebyshevII, &_Elliptic};
    for (int repeat = 0; repeat < 1500; ++repeat)
        for (int a = 0; a < 4; ++a) {
            const auto N = static_cast<int32_t>(random.integer(1, 40));
            const reference::Demand d = {random.real(1.0001, 5.0), random.real(0.001, 6.0),
                                         random.real(0.1, 150.0)};
            Lists lists(N);
            ASSERT_EQ(tables[a]->design(1.0, d.ws, d.Ap, d.As, N, lists.poles.data(), lists.zeros.data(),
                                        &lists.gain),
                      1);
            const auto expected = reference::prototype(static_cast<reference::Approximation>(a), d, N);
            const auto title = testing::Message()
                               << a << ", order " << N << ": " << d.ws << ' ' << d.Ap << ' ' << d.As;
            ASSERT_TRUE(begins(lists.poles, expected.poles)) << title;
            ASSERT_TRUE(begins(lists.zeros, expected.zeros)) << title;
            ASSERT_TRUE(sameBits(lists.gain, expected.gain)) << title;
            ASSERT_TRUE(isUnwritten(lists.poles, expected.poles.size())) << title;
            ASSERT_TRUE(isUnwritten(lists.zeros, expected.zeros.size())) << title;
        }
}

namespace
{

// |K product(zeros) / product(poles)|, conjugates counted.
double magnitudeAtZero(const Lists &lists, size_t poleCount, size_t zeroCount)
{
    const auto modulus = [](const std::vector<Root> &roots, size_t count) {
        double product = 1.0;
        for (size_t i = 0; i < count; ++i)
            if (std::isfinite(roots[i].real()))
                product *= isReal(roots[i]) ? std::abs(roots[i]) : std::norm(roots[i]);
        return product;
    };
    return lists.gain * modulus(lists.zeros, zeroCount) / modulus(lists.poles, poleCount);
}

} // namespace

TEST(FilterPrototype, HasItsMagnitudeAtFrequencyZeroByApproximationAndParity)
{
    const struct {
        const char *title;
        PrototypeDesign design;
        bool dipsWhenEven, hasAllZeros;
    } rows[] = {{"Butterworth", _ButterworthDesign, false, true},
                {"Chebyshev", _ChebyshevDesign, true, true},
                {"Chebyshev II", _ChebyshevIIDesign, false, false},
                {"elliptic", _EllipticDesign, true, false}};
    for (const auto &row : rows)
        for (int32_t N = 1; N <= 20; ++N) {
            Lists lists(N);
            ASSERT_EQ(row.design(1.0, 1.5, 2.0, 40.0, N, lists.poles.data(), lists.zeros.data(), &lists.gain),
                      1);
            const auto half = static_cast<size_t>((N + 1) / 2);
            const double expected = row.dipsWhenEven && N % 2 == 0 ? std::pow(10.0, -0.1) : 1.0;
            EXPECT_NEAR(magnitudeAtZero(lists, half, row.hasAllZeros ? static_cast<size_t>(N) : half),
                        expected, 1e-12)
                << row.title << ' ' << N;
        }
}

TEST(FilterPrototype, IsRefusedWithoutAnAttenuationOrAnOrder)
{
    const struct {
        double ws, Ap, As;
        int32_t order;
        bool hasMessage; // of the second Chebyshev type
    } rows[] = {
        {2, 0, 40, 3, false},  {2, -1, 40, 3, false}, {2, 1, 40, 0, false}, {2, 1, 40, -3, false},
        {-1, 0, -1, 3, false}, {-1, 1, -1, 0, false}, {-1, 1, -1, 3, true}, {0, 1, 0, 3, true},
    };
    const std::vector<Message> message = {
        error("ORVA_CreateFilter: Type II Chebyshev filters require fstop or As")};
    for (const auto &row : rows)
        for (const auto *table : {&_Butterworth, &_Chebyshev, &_ChebyshevII}) {
            if (row.hasMessage && table != &_ChebyshevII)
                continue;
            const Log log;
            Lists lists(4);
            lists.gain = 77.0;
            EXPECT_EQ(table->design(1.0, row.ws, row.Ap, row.As, row.order, lists.poles.data(),
                                    lists.zeros.data(), &lists.gain),
                      0);
            EXPECT_EQ(log.messages, row.hasMessage ? message : std::vector<Message>{});
            EXPECT_EQ(lists.gain, 77.0);
            EXPECT_TRUE(isUnwritten(lists.poles, 0) && isUnwritten(lists.zeros, 0));
        }
}

TEST(FilterPrototype, OfTheSecondChebyshevTypeWithoutAnAttenuationFollowsItsOwnFormula)
{
    const auto design = [](double ws, double Ap, int32_t N) {
        Lists lists(N);
        EXPECT_EQ(
            _ChebyshevIIDesign(1.0, ws, Ap, -1.0, N, lists.poles.data(), lists.zeros.data(), &lists.gain), 1);
        return lists;
    };
    // E about -19.3 and -5521: the poles are not a number, the zeros are.
    const Log log;
    for (double Ap : {3.0, 1.0}) {
        const Lists lists = design(2.0, Ap, 4);
        for (size_t k = 0; k < 2; ++k) {
            EXPECT_TRUE(std::isnan(lists.poles[k].real()) && std::isnan(lists.poles[k].imag())) << Ap;
            EXPECT_NEAR(lists.zeros[k].imag(),
                        2.0 / std::cos((2.0 * static_cast<double>(k) + 1.0) * pi / 8.0), 1e-14);
        }
        EXPECT_TRUE(std::isnan(lists.gain));
    }
    // E = 0.0970 for one pole at ws / sinh(asinh(sqrt(10^E - 1))).
    EXPECT_NEAR(design(1.2, 3.0, 1).poles[0].real(), 1.2 / std::sqrt(std::pow(10.0, 0.0970) - 1.0), 2e-3);
    // E about 0.1 where 10^(Ap/10) - 1 is 1.
    EXPECT_NEAR(design(1.2, 10.0 * std::log10(2.0), 1).poles[0].real(),
                1.2 / std::sqrt(std::pow(10.0, 0.1) - 1.0), 1e-9);
    // E about 1689: 10^E overflows, eps is 0, and the poles shrink to nothing.
    const Lists steep = design(2.0, 4.0, 4);
    EXPECT_FALSE(std::abs(steep.poles[0]) > 0.0);
    EXPECT_EQ(log.messages, std::vector<Message>{});
}
