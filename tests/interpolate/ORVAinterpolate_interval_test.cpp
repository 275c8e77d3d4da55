// The interval search against the bisection of the definition, for tables in order and in none.
#include "interpolate/ORVAinterpolate_interval.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using namespace orva;
using support::Random;

namespace
{

Interval bisected(const std::vector<float> &x, float xq)
{
    size_t lo = 0;
    size_t hi = x.size() - 1;
    while (hi - lo > 1) {
        const size_t mid = (lo + hi) / 2;
        if (x[mid] > xq)
            hi = mid;
        else
            lo = mid;
    }
    return {static_cast<uint32_t>(lo), static_cast<uint32_t>(hi)};
}

void expectBisection(const std::vector<float> &x, float xq)
{
    const Interval expected = bisected(x, xq);
    const auto [lo, hi] = intervalOf(x.data(), static_cast<int32_t>(x.size()), xq);
    ASSERT_EQ(lo, expected.lo) << xq << " among " << x.size();
    ASSERT_EQ(hi, expected.hi) << xq << " among " << x.size();
}

// Points, neighbours of points, what lies outside, and any bits.
std::vector<float> abscissae(Random &random, const std::vector<float> &x)
{
    std::vector<float> all = {-std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN(), 0.0f, -0.0f};
    for (int i = 0; i < 20; ++i) {
        const float point = x[static_cast<size_t>(random.integer(0, std::ssize(x) - 1))];
        all.insert(all.end(),
                   {point, std::nextafter(point, -1e30f), std::nextafter(point, 1e30f), random.anyFloat()});
    }
    return all;
}

} // namespace

TEST(IntervalSearch, TablesInOrderGiveTheIntervalOfTheBisection)
{
    Random random;
    for (int32_t n = 1; n <= 700 && !HasFailure(); ++n) {
        std::vector<float> x(static_cast<size_t>(n));
        for (float &point : x)
            point = static_cast<float>(random.real(-10, 10));
        std::ranges::sort(x);
        for (const float xq : abscissae(random, x))
            expectBisection(x, xq);
    }
}

TEST(IntervalSearch, EveryIntervalOfATableIsFound)
{
    for (const int32_t n : {2, 3, 4, 5, 7, 8, 9, 31, 32, 33, 1000}) {
        std::vector<float> x(static_cast<size_t>(n));
        for (int32_t i = 0; i < n; ++i)
            x[static_cast<size_t>(i)] = static_cast<float>(i);
        for (int32_t i = 0; i < n - 1; ++i) {
            const Interval found = intervalOf(x.data(), n, static_cast<float>(i) + 0.5f);
            EXPECT_EQ(found.lo, static_cast<uint32_t>(i)) << n;
            EXPECT_EQ(found.hi, static_cast<uint32_t>(i) + 1) << n;
        }
    }
}

TEST(IntervalSearch, AnyTableGivesTheIntervalOfTheBisection)
{
    Random random;
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        std::vector<float> x(static_cast<size_t>(random.integer(1, 300)));
        const auto kind = random.integer(0, 2);
        for (float &point : x) {
            const bool isRare = random.integer(0, 9) == 0;
            point = static_cast<float>(random.integer(-3, 3)); // many are equal
            if (kind == 1 && isRare)
                point = std::numeric_limits<float>::quiet_NaN();
            if (kind == 2)
                point = random.anyFloat();
        }
        for (const float xq : abscissae(random, x))
            expectBisection(x, xq);
    }
}
