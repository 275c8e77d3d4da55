// The interval of a table that an abscissa falls into, shared by both evaluators.
#pragma once

#include <bit>
#include <cstdint>

namespace orva
{

struct Interval {
    uint32_t lo;
    uint32_t hi;
};

// Bisection, for one point and more: while hi - lo > 1, the middle (lo + hi) / 2 becomes hi if its point lies above
// xq, else lo. An abscissa equal to a point belongs to the interval that starts there; one that compares false
// with everything, not-a-number, ends in the last interval. With one point the interval is that point twice.
//
// The number of halvings to a width of 1 or 2 follows from n alone, and a width of 1 has its middle at lo: so no branch
// depends on the points, and none is mispredicted where abscissae come in no order.
inline Interval intervalOf(const float *x, int32_t n, float xq)
{
    if (n == 1)
        return {0, 0};
    uint32_t lo = 0;
    uint32_t hi = static_cast<uint32_t>(n) - 1;
    for (auto halvings = static_cast<int32_t>(std::bit_width(hi)) - 1; halvings > 0; --halvings) {
        const uint32_t mid = (lo + hi) >> 1;
        if (x[mid] > xq) // a conditional move
            hi = mid;
        else
            lo = mid;
    }
    const uint32_t mid = (lo + hi) >> 1;
    lo += (mid - lo) & static_cast<uint32_t>(!(x[mid] > xq)); // mid - lo is 0 or 1
    return {lo, lo + 1};
}

} // namespace orva
