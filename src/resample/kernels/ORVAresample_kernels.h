// The hot loops of resampling.
#pragma once

#include "common/cpu.h"
#include "resample/ORVAresample_bank.h"

#include <cstdint>

namespace orva
{

// Consecutive outputs and the samples that they take. Both are counted from one and the same beginning of a period, M
// samples that make L outputs.
struct OutputSpan {
    const double *samples; // the block; the samples before it stand before it
    int64_t firstSample;   // of the block
    int64_t firstOutput;
    int32_t count;           // outputs
    const double *zerosFrom; // this sample and all after it are zeros
    bool allFinite;          // all samples that the outputs take
};

struct ResampleKernels {
    // Whether all are finite.
    bool (*widen)(const float *input, double *output, int32_t count);

    void (*narrow)(const double *input, float *output, int32_t count);

    // The outputs of a span: each the sum of `taps` products in double, rounded to float at the end, or, in a flush, after
    // every product.
    void (*sums)(const PolyphaseBank &bank, const OutputSpan &span, float *output);
    void (*roundedSums)(const PolyphaseBank &bank, const OutputSpan &span, float *output);

    // The outputs that the samples give, each repeated, kept or dropped; how many. `phase` is that of the next output, in
    // L-ths of a sample.
    int32_t (*hold)(const double *samples, int32_t count, float *output, uint32_t up, uint32_t down,
                    uint32_t *phase);
};

template <> const ResampleKernels &kernelsAt<ResampleKernels, Level::plain>();

} // namespace orva
