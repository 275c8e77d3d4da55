// The hot loop of the measures that may be split. The sums of the energy and the filter's recursion may not: each step
// takes the rounded result of the one before.
#pragma once

#include "common/cpu.h"

#include <cstdint>

namespace orva
{

struct MeasuresKernels {
    // The pairs of neighbours whose product, rounded to float, is below zero.
    int32_t (*crossings)(const float *input, int32_t length);
};

template <> const MeasuresKernels &kernelsAt<MeasuresKernels, Level::plain>();

} // namespace orva
