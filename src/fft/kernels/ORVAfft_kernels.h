// The hot loops of the transform family.
#pragma once

#include "common/cpu.h"

#include <orva/ORVAtypes.h>

namespace orva
{

// What the power of each bin is multiplied by, and what its decibels are held to from below.
struct DecibelScale {
    float a;
    float b;
    float floor;
};

struct FftKernels {
    // Powers to decibels in whole groups of four: `count` is a multiple of four. The output may be the power.
    void (*decibels)(const float *power, float *output, int32_t count, DecibelScale scale);
    void (*adjustedDecibels)(const float *power, const float *adjustment, float *output, int32_t count,
                             DecibelScale scale);

    // power[k] = re^2 + im^2
    void (*powers)(const ORVA_COMPLEX *bins, float *power, int32_t count);

    // The output may be an input or overlap it, with the imaginary parts that the definition then gives.
    void (*products)(const ORVA_COMPLEX *a, const ORVA_COMPLEX *b, ORVA_COMPLEX *output, int32_t count);
};

template <> const FftKernels &kernelsAt<FftKernels, Level::plain>();

} // namespace orva
