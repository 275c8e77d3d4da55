// The zero-order hold.
#pragma once

#include <cstdint>

namespace orva
{

struct ZohResampler {
    int32_t upFactor;        // L
    int32_t downFactor;      // M
    uint32_t phase;          // of the next output, in L-ths of an input sample
    uint32_t inputCount;     // input samples seen; nothing reads it, it is part of the record's definition
    double *work;            // one block on its way into or out of the filter
    int32_t workCapacity;    // doubles
    int32_t outputsPerInput; // the most that one input can yield
    int32_t coefficientCount;
    int32_t upsampling; // 1: hold, then filter; 0: filter, then drop
    double *stateA;     // coefficientCount + 1 doubles; one allocation with stateB
    double *stateB;     // as many
    const double *denominator;
    const double *numerator;
};

// Null when memory is out, or the outputs to one input do not fit into 32 bits.
ZohResampler *newHold(int32_t inputRate, int32_t outputRate);
void freeHold(ZohResampler *resampler);
int32_t runHold(ZohResampler *resampler, const float *input, float *output, int32_t count);

} // namespace orva
