// The direct form, whose recursion is in kernels/plain.cpp: its calls on the handle.
#include "filter/ORVAfilter_internal.h"
#include "filter/kernels/ORVAfilter_kernels.h"

#include <algorithm>

namespace orva
{

int32_t _DFIIfilter(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                    uint32_t offset, uint32_t stride)
{
    kernels<FilterKernels>().directForm(*static_cast<_DFIIstate *>(filter->state),
                                        {.input = input,
                                         .output = output,
                                         .first = offset,
                                         .last = lastFrameStart(numSamples, filter->numChannels),
                                         .stride = stride,
                                         .channels = static_cast<size_t>(filter->numChannels)});
    return 1;
}

int32_t _DFIIreset(_ORVA_FILTER *filter)
{
    const auto *state = static_cast<const _DFIIstate *>(filter->state);
    const size_t rows = static_cast<size_t>(state->order) + 1;
    std::fill_n(state->memory, rows * static_cast<size_t>(filter->numChannels), 0.0f);
    return 1;
}

int32_t _DFIIcopyMem(_ORVA_FILTER *destination, const _ORVA_FILTER *source)
{
    auto *to = static_cast<_DFIIstate *>(destination->state);
    const auto *from = static_cast<const _DFIIstate *>(source->state);
    const auto channels = static_cast<size_t>(destination->numChannels);
    const size_t rows = static_cast<size_t>(to->order) + 1;
    const size_t sourceRows = static_cast<size_t>(from->order) + 1;

    std::copy_n(from->memory, std::min(rows, sourceRows) * channels, to->memory);
    // The rows to clear are as many as the source lacks, but from four times its count on: hosts depend on the
    // rows between being kept. They always reach past the ring, whose end is where clearing stops.
    const size_t firstCleared = 4 * sourceRows;
    if (firstCleared < rows)
        std::fill_n(to->memory + firstCleared * channels, (rows - firstCleared) * channels, 0.0f);
    // The larger of this order and the source's position, kept inside the ring. The history is thereby
    // rotated, which is deliberate: rows keep their numbers.
    to->position = to->order;
    return 1;
}

} // namespace orva
