// Roots of the elliptic prototype.
#include "filter/ORVAfilter_design.h"
#include "filter/ORVAfilter_design_reference.h"
#include "filter/ORVAfilter_lists.h"
#include "support/bits.h"
#include "support/log.h"

using namespace orva;

using support::Log;
using support::Message;
using support::sameBits;

namespace
{

Lists designed(double ws, double Ap, double As, int32_t order)
{
    Lists lists(order);
    EXPECT_EQ(_EllipticDesign(1.0, ws, Ap, As, order, lists.poles.data(), lists.zeros.data(), &lists.gain),
              1);
    return lists;
}

} // namespace

TEST(EllipticPrototype, HasTheWorkedRoots)
{
    const Lists lists = designed(2.0, 1.0, 40.0, 4);
    EXPECT_TRUE(near(lists.poles, {{-0.35127, 0.44250}, {-0.12148, 0.98918}}, 5e-6));
    EXPECT_TRUE(near(lists.zeros, {{0.0, 4.92211}, {0.0, 2.14319}}, 5e-6));
    EXPECT_NEAR(lists.gain, 0.0025391204080538405, 1e-16);
    EXPECT_TRUE(isUnwritten(lists.poles, 2) && isUnwritten(lists.zeros, 2));
}

TEST(EllipticPrototype, RestsOnTheWorkedNomes)
{
    EXPECT_NEAR(reference::nomeOf(2.0), 0.017972387008967253, 1e-17);
    EXPECT_NEAR(reference::nomeOf(1.5), 0.03667083605803631, 1e-16);
    EXPECT_NEAR(reference::nomeOf(1.2), 0.07356798867292512, 1e-16);
}

// sigma = 2 q^(1/4) S / (1 + 2 C): S summed to the end, C of two terms and no more. The real pole shows it.
TEST(EllipticPrototype, SumsTheDenominatorOfSigmaToItsSecondTermOnly)
{
    const auto sigmaOf = [](double ws, double Ap, int N) {
        const double q = reference::nomeOf(ws);
        const double a = std::pow(10.0, Ap / 20.0);
        const double Lambda = std::log((a + 1.0) / (a - 1.0)) / (2.0 * N);
        double S = 0.0;
        for (int m = 0; m < 12; ++m)
            S += (m % 2 == 0 ? 1.0 : -1.0) * std::pow(q, m * (m + 1)) * std::sinh((2 * m + 1) * Lambda);
        const double C = std::pow(q, 4.0) * std::cosh(4.0 * Lambda) - q * std::cosh(2.0 * Lambda);
        return 2.0 * std::pow(q, 0.25) * S / (1.0 + 2.0 * C);
    };
    EXPECT_NEAR(sigmaOf(2.0, 1.0, 4), 0.2794199088250441, 1e-15);
    for (double ws : {1.1, 1.5, 2.0})
        for (int32_t N : {3, 5, 7}) {
            const Root pole = designed(ws, 0.5, 40.0, N).poles[static_cast<size_t>(N / 2)];
            EXPECT_NEAR(pole.real(), -sigmaOf(ws, 0.5, N) * std::sqrt(ws), 1e-13) << ws << ' ' << N;
            EXPECT_EQ(pole.imag(), 0.0);
        }
}

TEST(EllipticPrototype, OfOrderOneIsARealPole)
{
    const Lists lists = designed(2.0, 1.0, 40.0, 1);
    EXPECT_LT(lists.poles[0].real(), 0.0);
    EXPECT_EQ(lists.poles[0].imag(), 0.0);
    EXPECT_EQ(lists.zeros[0], Root(std::numeric_limits<double>::infinity(), 0.0));
    EXPECT_NEAR(lists.gain, -lists.poles[0].real(), 1e-15);
}

TEST(EllipticPrototype, PoleFrequenciesRiseWhileZeroFrequenciesFall)
{
    for (int32_t N = 2; N <= 12; ++N) {
        const Lists lists = designed(1.3, 1.0, 40.0, N);
        for (size_t k = 0; k < static_cast<size_t>(N / 2); ++k) {
            EXPECT_LT(lists.poles[k].real(), 0.0) << N;
            EXPECT_EQ(lists.zeros[k].real(), 0.0) << N;
            if (k > 0) {
                EXPECT_GT(lists.poles[k].imag(), lists.poles[k - 1].imag()) << N;
                EXPECT_LT(lists.zeros[k].imag(), lists.zeros[k - 1].imag()) << N;
            }
        }
    }
}

TEST(EllipticPrototype, NeedsAStopbandAttenuationButNotItsValue)
{
    const Lists expected = designed(1.4, 2.0, 40.0, 7);
    for (double As : {1e-9, 3.0, 1e30}) {
        const Lists lists = designed(1.4, 2.0, As, 7);
        EXPECT_TRUE(begins(lists.poles, expected.poles)) << As;
        EXPECT_TRUE(begins(lists.zeros, expected.zeros)) << As;
        EXPECT_TRUE(sameBits(lists.gain, expected.gain)) << As;
    }
}

TEST(EllipticPrototype, IsRefusedInSilenceWithoutSelectivityOrAttenuations)
{
    const Log log;
    const double rows[][3] = {{0, 1, 40}, {-1, 1, 40}, {2, 0, 40}, {2, -1, 40}, {2, 1, 0}, {2, 1, -1}};
    for (const auto &[ws, Ap, As] : rows) {
        Lists lists(3);
        lists.gain = 77.0;
        EXPECT_EQ(_EllipticDesign(1.0, ws, Ap, As, 3, lists.poles.data(), lists.zeros.data(), &lists.gain),
                  0);
        EXPECT_EQ(lists.gain, 77.0);
        EXPECT_TRUE(isUnwritten(lists.poles, 0) && isUnwritten(lists.zeros, 0));
    }
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(EllipticPrototype, OfOrderZeroIsNotRefusedAndWritesNoRoot)
{
    Lists lists(2);
    EXPECT_EQ(_EllipticDesign(1.0, 2.0, 1.0, 40.0, 0, lists.poles.data(), lists.zeros.data(), &lists.gain),
              1);
    EXPECT_TRUE(isUnwritten(lists.poles, 0) && isUnwritten(lists.zeros, 0));
    EXPECT_NEAR(lists.gain, std::pow(10.0, -0.05), 1e-15);
}

TEST(EllipticPrototype, EndsAndReportsNothingForAnySelectivity)
{
    const Log log;
    for (double ws : {1e-300, 0.5, 0.999, 1.0, std::nextafter(1.0, 2.0), 1e300})
        for (double Ap : {1e-300, 1e-15, 3.0, 1e4})
            for (int32_t N : {1, 2, 5, 12})
                EXPECT_EQ(designed(ws, Ap, 40.0, N).poles.size(), static_cast<size_t>(N)) << ws << ' ' << Ap;
    for (int32_t N : {3, 4}) {
        const Lists lists = designed(0.5, 1.0, 40.0, N); // 1 - k^2 below 0
        EXPECT_TRUE(isUnwritten(lists.poles, 0) == (N == 4)) << "not a number";
        EXPECT_TRUE(std::isnan(lists.poles[0].real()) && std::isnan(lists.gain));
    }
    EXPECT_EQ(log.messages, std::vector<Message>{});
}
