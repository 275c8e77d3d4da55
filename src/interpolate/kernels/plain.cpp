#include "interpolate/kernels/ORVAinterpolate_kernels.h"

namespace orva
{
namespace plain
{
namespace
{

struct Interval {
    int32_t lo;
    int32_t hi;
};

// Bisection. An abscissa equal to a point belongs to the interval that starts there; one that compares false
// with everything, not-a-number, ends in the last interval. With one point the interval is that point twice.
Interval intervalOf(const float *x, int32_t n, float xq)
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

//     h = x1 - x0,  a = (x1 - xq) / h,  b = (xq - x0) / h
//     y = ((a^3 - a) y0'' + (b^3 - b) y1'') h^2 / 6 + a y0 + b y1
// In float up to the last quotient and sum.
float spline(const float *x, const float *y, const float *y2, int32_t n, float xq)
{
    const auto [lo, hi] = intervalOf(x, n, xq);
    const float h = x[hi] - x[lo];
    const float a = (x[hi] - xq) / h;
    const float b = (xq - x[lo]) / h;
    const float c = ((a * a * a - a) * y2[lo] + (b * b * b - b) * y2[hi]) * (h * h);
    const float l = a * y[lo] + b * y[hi];
    return static_cast<float>(static_cast<double>(c) / 6.0 + static_cast<double>(l));
}

//     y = (xq - x0) / (x1 - x0) (y1 - y0) + y0
float line(const float *x, const float *y, int32_t n, float xq)
{
    const auto [lo, hi] = intervalOf(x, n, xq);
    return ((xq - x[lo]) / (x[hi] - x[lo])) * (y[hi] - y[lo]) + y[lo];
}

} // namespace
} // namespace plain

template <> const InterpolateKernels &kernelsAt<InterpolateKernels, Level::plain>()
{
    static constexpr InterpolateKernels table = {plain::spline, plain::line};
    return table;
}

} // namespace orva
