// The table of elliptic filters: its order, the arrays that stand to the last digit, and each filter measured on
// its response.
#include "resample/ORVAresample_filterset.h"
#include "support/bits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <span>
#include <string>
#include <vector>

using namespace orva;

namespace
{

using support::sameBits;

constexpr size_t reachable = 28;
constexpr size_t rowCount = std::size(FilterSet);

std::span<const double> denominator(const FilterSetRow &row)
{
    return {row.denominator, static_cast<size_t>(row.count)};
}

std::span<const double> numerator(const FilterSetRow &row)
{
    return {row.numerator, static_cast<size_t>(row.count)};
}

std::string name(const FilterSetRow &row)
{
    return std::to_string(row.rateHigh) + " / " + std::to_string(row.rateLow);
}

// sum of c[k] z^-k at z = e^(i pi f), f = 1 at half the rate. In long double, since the coefficients of a narrow
// filter cancel almost wholly near zero frequency.
std::complex<long double> polynomial(std::span<const double> c, long double f)
{
    const auto step = std::polar(1.0L, -std::numbers::pi_v<long double> * f);
    std::complex<long double> sum = 0.0L;
    for (size_t k = c.size(); k-- > 0;)
        sum = sum * step + static_cast<long double>(c[k]);
    return sum;
}

double decibels(const FilterSetRow &row, double f)
{
    const auto gain = polynomial(numerator(row), static_cast<long double>(f)) /
                      polynomial(denominator(row), static_cast<long double>(f));
    return static_cast<double>(20.0L * std::log10(std::abs(gain)));
}

struct Range {
    double lowest, highest;
};

// Of the gain in decibels over first .. last, both included.
Range gains(const FilterSetRow &row, double first, double last)
{
    constexpr int steps = 3000;
    Range range{INFINITY, -INFINITY};
    for (int i = 0; i <= steps; ++i) {
        const double gain = decibels(row, first + (last - first) * i / steps);
        range = {std::min(range.lowest, gain), std::max(range.highest, gain)};
    }
    return range;
}

// rateLow / 2 on the scale where 1 is half of rateHigh.
double stopbandStart(const FilterSetRow &row)
{
    return static_cast<double>(row.rateLow) / row.rateHigh;
}

double passbandEnd(const FilterSetRow &row)
{
    const bool narrowest = row.rateHigh == 96000 && row.rateLow == 8000;
    return (narrowest ? 0.8967 : 0.95) * stopbandStart(row);
}

// All zeros of a[0] z^n + ... + a[n] lie inside the unit circle when every reflection coefficient of the step-down
// recursion does (Schur and Cohn).
bool insideUnitCircle(std::span<const double> a)
{
    std::vector<long double> p(a.begin(), a.end());
    while (p.size() > 1) {
        const long double k = p.back() / p.front();
        if (!(std::abs(k) < 1.0L))
            return false;
        std::vector<long double> lower(p.size() - 1);
        for (size_t i = 0; i < lower.size(); ++i)
            lower[i] = (p[i] - k * p[p.size() - 1 - i]) / (1.0L - k * k);
        p = lower;
    }
    return true;
}

const FilterSetRow &firstMatch(int32_t high, int32_t low)
{
    return *std::find_if(std::begin(FilterSet), std::end(FilterSet),
                         [=](const auto &row) { return row.rateHigh == high && row.rateLow == low; });
}

} // namespace

// Rates and count of each row; equal letters mark rows that share their arrays.
TEST(FilterSetTable, HoldsThirtyFiveRowsInOrder)
{
    const struct {
        int32_t rateHigh, rateLow, count;
        char arrays;
    } expected[] = {
        {48000, 44100, 7, 'a'},  {44100, 32000, 9, 'b'},  {22050, 16000, 9, 'b'},  {11025, 8000, 9, 'b'},
        {32000, 22050, 9, 'c'},  {16000, 11025, 9, 'c'},  {48000, 32000, 9, 'd'},  {96000, 48000, 10, 'e'},
        {32000, 16000, 10, 'e'}, {16000, 8000, 10, 'e'},  {44100, 22050, 10, 'e'}, {22050, 11025, 10, 'e'},
        {96000, 44100, 10, 'f'}, {48000, 22050, 10, 'f'}, {44100, 16000, 10, 'g'}, {22050, 8000, 10, 'g'},
        {32000, 11025, 10, 'h'}, {96000, 32000, 10, 'i'}, {48000, 16000, 10, 'i'}, {32000, 8000, 10, 'j'},
        {44100, 11025, 10, 'j'}, {96000, 22050, 11, 'k'}, {48000, 11025, 11, 'k'}, {44100, 8000, 11, 'l'},
        {96000, 16000, 11, 'm'}, {48000, 8000, 11, 'm'},  {96000, 11025, 11, 'n'}, {96000, 8000, 11, 'o'},
        {11025, 8000, 6, 'p'},   {16000, 8000, 6, 'q'},   {22050, 8000, 6, 'r'},   {32000, 8000, 6, 's'},
        {44100, 8000, 6, 't'},   {48000, 8000, 6, 'u'},   {96000, 8000, 6, 'v'},
    };
    ASSERT_EQ(rowCount, std::size(expected));
    for (size_t i = 0; i < rowCount; ++i) {
        EXPECT_EQ(FilterSet[i].rateHigh, expected[i].rateHigh) << "row " << i + 1;
        EXPECT_EQ(FilterSet[i].rateLow, expected[i].rateLow) << "row " << i + 1;
        EXPECT_EQ(FilterSet[i].count, expected[i].count) << "row " << i + 1;
        for (size_t j = 0; j < i; ++j) {
            const bool shared = expected[i].arrays == expected[j].arrays;
            EXPECT_EQ(FilterSet[i].denominator == FilterSet[j].denominator, shared) << i + 1 << ", " << j + 1;
            EXPECT_EQ(FilterSet[i].numerator == FilterSet[j].numerator, shared) << i + 1 << ", " << j + 1;
        }
    }
}

TEST(FilterSetTable, TheFirstMatchLeavesTheLastSevenRowsUnreached)
{
    for (size_t i = 0; i < rowCount; ++i) {
        const auto &found = firstMatch(FilterSet[i].rateHigh, FilterSet[i].rateLow);
        EXPECT_EQ(&found == &FilterSet[i], i < reachable) << "row " << i + 1;
        EXPECT_LT(&found, FilterSet + reachable) << "row " << i + 1;
    }
}

TEST(FilterSetTable, GivenArraysStandToTheLastDigit)
{
    using Array = std::vector<double>;
    const struct {
        int32_t rateHigh, rateLow;
        Array a, b;
    } given[] = {
        {48000,
         44100,
         {1.0, 4.2885221720208655, 8.017215251564679, 8.305310755628911, 5.0599138624699895,
          1.7436762341517453, 0.27677380690635406},
         {0.41467523480641083, 2.4269568048017307, 5.978140847415679, 7.931702161078539, 5.978140847415678,
          2.4269568048017307, 0.4146752348064108}},
        {16000,
         8000,
         {1.0, -2.3056683587960736, 5.24927421255284, -7.136731014201784, 8.449562860884022,
          -7.358746357493317, 5.246281076434849, -2.7972268559911826, 1.061405697971324, -0.2565358447867008},
         {0.019462701211040254, 0.04849688000503304, 0.11488372743118357, 0.17302708069602812,
          0.21993731894370455, 0.21993731894370455, 0.17302708069602812, 0.1148837274311836,
          0.048496880005033056, 0.01946270121104026}},
    };
    for (const auto &[rateHigh, rateLow, a, b] : given) {
        const auto &row = firstMatch(rateHigh, rateLow);
        EXPECT_TRUE(sameBits(denominator(row), std::span<const double>(a))) << name(row);
        EXPECT_TRUE(sameBits(numerator(row), std::span<const double>(b))) << name(row);
    }
}

TEST(FilterSetTable, DenominatorsBeginWithOne)
{
    for (const auto &row : FilterSet)
        EXPECT_EQ(row.denominator[0], 1.0) << name(row);
}

TEST(FilterSetTable, NumeratorsArePalindromes)
{
    for (const auto &row : FilterSet) {
        const auto b = numerator(row);
        for (size_t k = 0; k < b.size(); ++k)
            EXPECT_NEAR(b[k], b[b.size() - 1 - k], 1e-13 * std::abs(b[k])) << name(row) << " at " << k;
    }
}

TEST(FilterSetTable, PolesLieInsideTheUnitCircle)
{
    for (const auto &row : FilterSet)
        EXPECT_TRUE(insideUnitCircle(denominator(row))) << name(row);
}

TEST(FilterSetMeasure, TheTestOfPolesTellsInsideFromOutside)
{
    EXPECT_TRUE(insideUnitCircle(std::vector{1.0, -0.999}));
    EXPECT_FALSE(insideUnitCircle(std::vector{1.0, -1.001}));
    EXPECT_TRUE(insideUnitCircle(std::vector{1.0, -1.4, 0.98}));
    EXPECT_FALSE(insideUnitCircle(std::vector{1.0, -1.4, 1.02}));
    EXPECT_FALSE(insideUnitCircle(std::vector{1.0, -2.5, 1.0})); // 2 and 1/2
}

TEST(FilterSetResponse, PassbandRipplesByOneDecibel)
{
    for (const auto &row : std::span(FilterSet).first<reachable>()) {
        const auto [lowest, highest] = gains(row, 0.0, passbandEnd(row));
        EXPECT_NEAR(lowest, -1.0, 0.01) << name(row);
        EXPECT_NEAR(highest, 0.0, 0.01) << name(row);
    }
}

TEST(FilterSetResponse, PassbandEndsWhereTheRippleIsLeft)
{
    for (const auto &row : std::span(FilterSet).first<reachable>()) {
        EXPECT_NEAR(decibels(row, passbandEnd(row)), -1.0, 0.01) << name(row);
        EXPECT_LT(decibels(row, passbandEnd(row) * 1.003), -1.05) << name(row);
    }
}

TEST(FilterSetResponse, SixtyDecibelsDownFromTheLowerNyquistFrequency)
{
    for (const auto &row : std::span(FilterSet).first<reachable>())
        EXPECT_LE(gains(row, stopbandStart(row), 1.0).highest, -59.999) << name(row);
}

TEST(FilterSetResponse, GainAtZeroFrequencyGoesByParity)
{
    for (const auto &row : std::span(FilterSet).first<reachable>())
        EXPECT_NEAR(decibels(row, 0.0), row.count % 2 == 0 ? 0.0 : -1.0, 0.01) << name(row);
}

// The last seven rows are of order 5, for which 1 dB and 60 dB lie a factor of 1.67 apart on the analogue scale
// (the degree equation), and less than an octave on any digital one.
TEST(FilterSetResponse, RowsNeverReachedHaveThePassbandOfTheirRates)
{
    for (const auto &row : std::span(FilterSet).last<rowCount - reachable>()) {
        const double end = 0.95 * stopbandStart(row);
        const auto [lowest, highest] = gains(row, 0.0, end);
        EXPECT_NEAR(lowest, -1.0, 0.01) << name(row);
        EXPECT_NEAR(highest, 0.0, 0.01) << name(row);
        EXPECT_NEAR(decibels(row, end), -1.0, 0.01) << name(row);
        EXPECT_NEAR(decibels(row, 0.0), 0.0, 0.01) << name(row);
        EXPECT_LE(gains(row, std::min(1.0, 2.0 * end), 1.0).highest, -59.999) << name(row);
    }
}
