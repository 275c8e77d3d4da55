#include <orva/ORVAinterpolate.h>

#include "interpolate/ORVAinterpolate_interval.h"

#include <limits>

using namespace orva;

// y = (xq - x0) / (x1 - x0) (y1 - y0) + y0
float ORVAINTERPOLATE_Linear(const float *x, const float *y, int32_t n, float xq)
{
    if (n < 1)
        return std::numeric_limits<float>::quiet_NaN();
    const auto [lo, hi] = intervalOf(x, n, xq);
    return ((xq - x[lo]) / (x[hi] - x[lo])) * (y[hi] - y[lo]) + y[lo];
}
