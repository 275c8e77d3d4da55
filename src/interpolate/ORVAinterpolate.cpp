#include <orva/ORVAinterpolate.h>

#include "interpolate/kernels/ORVAinterpolate_kernels.h"

#include <limits>

using namespace orva;

float ORVAINTERPOLATE_Linear(const float *x, const float *y, int32_t n, float xq)
{
    if (n < 1)
        return std::numeric_limits<float>::quiet_NaN();
    return kernelsAt<InterpolateKernels, Level::plain>().line(x, y, n, xq);
}
