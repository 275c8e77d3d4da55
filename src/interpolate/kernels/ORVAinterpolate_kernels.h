// The hot loops of interpolation: both evaluators, for tables of one point and more.
#pragma once

#include "common/cpu.h"

namespace orva
{

struct InterpolateKernels {
    float (*spline)(const float *x, const float *y, const float *y2, int32_t n, float xq);
    float (*line)(const float *x, const float *y, int32_t n, float xq);
};

template <> const InterpolateKernels &kernelsAt<InterpolateKernels, Level::plain>();

} // namespace orva
