#include "support/bits.h"
#include "support/random.h"

#include <orva/ORVAutil.h>

#include <algorithm>
#include <limits>

using support::Random;
using support::sameBits;

namespace
{

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

const double edges[25] = {0,    60,   150,  250,  350,  450,  570,  700,  840,  1000, 1170,  1370, 1600,
                          1850, 2150, 2500, 2900, 3400, 4000, 4800, 5800, 7000, 8500, 10500, 13500};

} // namespace

TEST(MelScale, HasItsWorkedValues)
{
    EXPECT_EQ(ORVAUTIL_Freq2Mels(0.0), 0.0);
    EXPECT_EQ(ORVAUTIL_Freq2Mels(700.0), 1127.01048 * std::log(2.0));
    EXPECT_NEAR(ORVAUTIL_Freq2Mels(700.0), 781.18, 0.005);
    EXPECT_NEAR(ORVAUTIL_Mels2Freq(ORVAUTIL_Freq2Mels(700.0)), 700.0, 1e-10);
}

TEST(MelScale, EqualsItsFormulasBitForBitAndRoundTrips)
{
    Random random;
    for (int i = 0; i < 10000; ++i) {
        const double hertz = random.real(0.0, 48000.0);
        const double ratio = hertz / 700.0;
        const double mels = 1127.01048 * std::log(ratio + 1.0);
        ASSERT_EQ(ORVAUTIL_Freq2Mels(hertz), mels);
        const double grown = std::exp(mels / 1127.01048);
        ASSERT_EQ(ORVAUTIL_Mels2Freq(mels), (grown - 1.0) * 700.0);
        ASSERT_NEAR(ORVAUTIL_Mels2Freq(mels), hertz, 1e-9 * (hertz + 1.0));
    }
}

TEST(MelScale, EndsAtMinus700Hertz)
{
    EXPECT_EQ(ORVAUTIL_Freq2Mels(-700.0), -infinite);
    EXPECT_TRUE(std::isnan(ORVAUTIL_Freq2Mels(-701.0)));
    EXPECT_TRUE(std::isnan(ORVAUTIL_Freq2Mels(notANumber)));
}

TEST(BarkScale, BelowOneHertzIsTheValueAtOneHertz)
{
    for (const double hertz : {0.5, 0.0, -1.0, -infinite, std::nextafter(1.0, 0.0)})
        EXPECT_EQ(ORVAUTIL_Freq2Bark(hertz), 0.009880060319993549) << hertz;
    EXPECT_NEAR(ORVAUTIL_Freq2Bark(1.0), 0.009880060319993549, 1e-17);
    EXPECT_TRUE(std::isnan(ORVAUTIL_Freq2Bark(notANumber)));
}

TEST(BarkScale, EqualsItsFormulaBitForBit)
{
    Random random;
    for (int i = 0; i < 10000; ++i) {
        const double hertz = random.real(1.0, 48000.0);
        const double r = hertz / 7500.0;
        const double first = 13.0 * std::atan(0.00076 * hertz);
        const double second = 3.5 * std::atan(r * r);
        ASSERT_EQ(ORVAUTIL_Freq2Bark(hertz), first + second) << hertz;
    }
}

TEST(BarkScale, TheWayBackRunsAlongTheBandEdges)
{
    for (int i = 0; i <= 24; ++i)
        EXPECT_EQ(ORVAUTIL_Bark2Freq(i), edges[i]) << i;
    struct {
        double bark, hertz;
    } const cases[] = {{1.5, 105}, {23.5, 12000}, {25, 16500},
                       {-1, -60},  {-0.5, -30},   {100, 10500 + 77.0 * 3000}};
    for (const auto &[bark, hertz] : cases)
        EXPECT_EQ(ORVAUTIL_Bark2Freq(bark), hertz) << bark;
}

TEST(BarkScale, TheWayBackEqualsItsDefinitionBitForBit)
{
    Random random;
    for (int i = 0; i < 10000; ++i) {
        const double bark = random.real(-30.0, 60.0);
        const int lo = std::min(std::max(static_cast<int>(bark), 0), 23);
        const int hi = std::min(std::max(static_cast<int>(bark + 1.0), 1), 24);
        ASSERT_EQ(ORVAUTIL_Bark2Freq(bark), (edges[hi] - edges[lo]) * (bark - lo) + edges[lo]) << bark;
    }
}

TEST(BarkScale, ValuesBeyondAnyIntegerKeepTheOuterSlopes)
{
    EXPECT_EQ(ORVAUTIL_Bark2Freq(1e300), 3000.0 * (1e300 - 23.0) + 10500.0);
    EXPECT_EQ(ORVAUTIL_Bark2Freq(-1e300), 60.0 * -1e300);
    EXPECT_EQ(ORVAUTIL_Bark2Freq(infinite), infinite);
    EXPECT_EQ(ORVAUTIL_Bark2Freq(-infinite), -infinite);
    EXPECT_TRUE(std::isnan(ORVAUTIL_Bark2Freq(notANumber)));
}
