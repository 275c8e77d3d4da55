// The block filter of libkett runs the filters of the table in direct form, which is ill-conditioned for the
// narrow ones. These tests say how far its double recursion may be trusted with them.
#include "resample/ORVAresample_filterset.h"
#include "support/bits.h"
#include "support/random.h"

#include <kett/KTfilter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <span>
#include <vector>

using namespace orva;

namespace
{

using support::sameBits;
using Doubles = std::vector<double>;

const std::span<const FilterSetRow> reachableRows = std::span(FilterSet).first<28>();

Doubles run(const FilterSetRow &row, std::span<const float> input, const std::vector<int32_t> &cuts)
{
    Doubles state(static_cast<size_t>(row.count) + 1), output(input.size(), std::nan(""));
    size_t start = 0;
    for (size_t i = 0; start < input.size(); ++i) {
        const int32_t count = std::min(cuts[i % cuts.size()], static_cast<int32_t>(input.size() - start));
        FilterBlockFloat(row.denominator, row.numerator, row.count, state.data(), nullptr,
                         input.data() + start, output.data() + start, count);
        start += static_cast<size_t>(count);
    }
    return output;
}

// y[n] = sum of b[k] x[n-k] - sum of a[k] y[n-k], a[k] from k = 1
std::vector<long double> reference(const FilterSetRow &row, std::span<const float> x)
{
    std::vector<long double> y(x.size());
    for (size_t n = 0; n < x.size(); ++n)
        for (size_t k = 0; k < static_cast<size_t>(row.count) && k <= n; ++k) {
            y[n] += static_cast<long double>(row.numerator[k]) * static_cast<long double>(x[n - k]);
            if (k > 0)
                y[n] -= static_cast<long double>(row.denominator[k]) * y[n - k];
        }
    return y;
}

double largest(std::span<const double> values)
{
    double peak = 0.0;
    for (const double x : values)
        peak = std::max(peak, std::abs(x));
    return peak;
}

} // namespace

TEST(FilterSetRun, ErrorAgainstLongDoubleStaysWithinTheOrdersBound)
{
    const std::map<int32_t, double> boundOfOrder{{6, 1e-11}, {8, 1e-11}, {9, 1e-9}, {10, 1e-4}};
    support::Random random;
    const auto input = random.noise(20000);
    for (const auto &row : reachableRows) {
        const auto output = run(row, input, {20000});
        const auto expected = reference(row, input);
        long double peak = 0.0L, error = 0.0L;
        for (size_t n = 0; n < input.size(); ++n) {
            peak = std::max(peak, std::abs(expected[n]));
            error = std::max(error, std::abs(static_cast<long double>(output[n]) - expected[n]));
        }
        EXPECT_LE(static_cast<double>(error / peak), boundOfOrder.at(row.count - 1))
            << row.rateHigh << " / " << row.rateLow;
    }
}

TEST(FilterSetRun, SilenceAfterNoiseDiesAway)
{
    support::Random random;
    auto input = random.noise(2000);
    input.resize(30000);
    for (const auto &row : reachableRows) {
        const auto output = run(row, input, {1024});
        EXPECT_LE(largest(std::span(output).last(1000)), 1e-10 * largest(output))
            << row.rateHigh << " / " << row.rateLow;
    }
}

TEST(FilterSetRun, AnyCutOfTheStreamGivesTheSameBits)
{
    support::Random random;
    const auto input = random.noise(2000);
    for (const auto &row : reachableRows) {
        const auto whole = run(row, input, {2000});
        for (const std::vector<int32_t> &cuts : {std::vector<int32_t>{1}, {7}, {64}, {0, 1, 500, 2}})
            EXPECT_TRUE(sameBits(run(row, input, cuts), whole))
                << row.rateHigh << " / " << row.rateLow << testing::PrintToString(cuts);
    }
}
