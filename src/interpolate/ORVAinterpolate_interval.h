// The interval of a table that an abscissa falls into, shared by both evaluators.
#pragma once

#include <cstdint>

struct Interval {
    int32_t lo;
    int32_t hi;
};

// Bisection. An abscissa equal to a point belongs to the interval that starts there; one that compares false
// with everything, not-a-number, ends in the last interval. With one point the interval is that point twice.
inline Interval intervalOf(const float *x, int32_t n, float xq)
{
    int32_t lo = 0;
    int32_t hi = n - 1;
    while (hi - lo > 1) {
        const int32_t mid = lo + ((hi - lo) >> 1); // (lo + hi) >> 1 without its overflow
        if (x[mid] > xq)
            hi = mid;
        else
            lo = mid;
    }
    return {lo, hi};
}
