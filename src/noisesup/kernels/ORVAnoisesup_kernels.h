// The hot loops of the noise suppressor: a band between 16 bits and the floats that the suppression takes.
#pragma once

#include "common/cpu.h"

#include <cstdint>

namespace orva
{

// A sample of the suppressor in 16 bits. The lower threshold is -32678 and not the limit of 16 bits, on which stored
// results depend: what lies below becomes -32768. Not-a-number gives 0.
int16_t narrowed(float v);

struct NoisesupKernels {
    void (*widenBand)(const int16_t *samples, float *band, int32_t count);
    void (*narrowBand)(const float *band, int16_t *samples, int32_t count); // each sample narrowed
};

template <> const NoisesupKernels &kernelsAt<NoisesupKernels, Level::plain>();

} // namespace orva
