// The biquad form, whose recursion is in kernels/plain.cpp: its calls on the handle.
#include "filter/ORVAfilter_internal.h"
#include "filter/ORVAfilter_silence.h"
#include "filter/kernels/ORVAfilter_kernels.h"

#include <algorithm>

namespace orva
{

int32_t _DFIISOSfilter(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                       uint32_t offset, uint32_t stride)
{
    const auto run = hasSlowSubnormals() ? runBiquadsInUnits : kernels<FilterKernels>().biquads;
    run(*static_cast<_DFIISOSstate *>(filter->state),
        {.input = input,
         .output = output,
         .first = offset,
         .last = lastFrameStart(numSamples, filter->numChannels),
         .stride = stride,
         .channels = static_cast<size_t>(filter->numChannels)});
    return 1;
}

int32_t _DFIISOSreset(_ORVA_FILTER *filter)
{
    const auto *state = static_cast<const _DFIISOSstate *>(filter->state);
    const size_t slot = static_cast<size_t>(filter->numChannels) * static_cast<size_t>(state->numBiquads);
    std::fill_n(state->memory, biquadSlots * slot, 0.0);
    return 1;
}

int32_t _DFIISOScopyMem(_ORVA_FILTER *destination, const _ORVA_FILTER *source)
{
    auto *to = static_cast<_DFIISOSstate *>(destination->state);
    const auto *from = static_cast<const _DFIISOSstate *>(source->state);
    const auto channels = static_cast<size_t>(source->numChannels);
    const auto toSections = static_cast<size_t>(to->numBiquads);
    const auto fromSections = static_cast<size_t>(from->numBiquads);
    const size_t toSize = biquadSlots * channels * toSections;

    if (toSections > 0 && fromSections == toSections) {
        std::copy_n(from->memory, toSize, to->memory);
        to->position = from->position;
        return 1;
    }
    if (toSections == 0 || fromSections == 0) {
        std::fill_n(to->memory, toSize, 0.0);
        to->position = 0;
        return 1;
    }
    const size_t common = std::min(toSections, fromSections);
    const size_t missing = toSections - common;
    for (size_t t = 0; t < biquadSlots; ++t) {
        for (size_t c = 0; c < channels; ++c) {
            std::copy_n(from->memory + (t * channels + c) * fromSections, common,
                        to->memory + (t * channels + c) * toSections);
            // `channels` times c, where the copy has the section count: hosts depend on which memories are
            // kept. With many channels the stretch reaches past the memory, whose end is where clearing
            // stops.
            const size_t cleared = std::min(toSections * t * channels + channels * c + fromSections, toSize);
            std::fill_n(to->memory + cleared, std::min(missing, toSize - cleared), 0.0);
        }
    }
    to->position = from->position;
    return 1;
}

} // namespace orva
