// The exported calls on a finished filter. What differs between the two structures is behind the handle's
// operations.
#include <orva/ORVAfilter.h>

#include "filter/ORVAfilter_internal.h"

#include <kett/KTdebug.h>

#include <algorithm>
#include <cstdlib>

using namespace orva;

int32_t ORVA_Filter(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples)
{
    if (filter == nullptr || input == nullptr || output == nullptr)
        return 0;
    return filter->filterFn(filter, input, output, numSamples, 0, static_cast<uint32_t>(filter->numChannels));
}

int32_t ORVA_FilterEx(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                      uint32_t offset, uint32_t stride)
{
    if (filter == nullptr || input == nullptr || output == nullptr)
        return 0;
    return filter->filterFn(filter, input, output, numSamples, offset, stride);
}

int32_t ORVA_ResetFilter(_ORVA_FILTER *filter)
{
    return filter == nullptr ? 0 : filter->resetFn(filter);
}

int32_t ORVA_CopyFilterMemories(_ORVA_FILTER *destination, const _ORVA_FILTER *source)
{
    if (destination == nullptr || source == nullptr)
        return 0;
    if (destination->copyMemFn != source->copyMemFn || destination->numChannels != source->numChannels ||
        destination->kind != source->kind)
        return 0;
    return destination->copyMemFn(destination, source);
}

bool orva::refusesBiquads(uint32_t numBiquads, const double *coefs)
{
    if (coefs == nullptr)
        return true;
    if (numBiquads <= maxBiquads)
        return false;
    KTDEBUG_Error(-1, "ORVA_CreateFilterFromBiquads: Too many biquads (%u)\n", numBiquads);
    return true;
}

int32_t ORVA_UpdateFilterBiquads(_ORVA_FILTER *filter, uint32_t numBiquads, const double *coefs)
{
    if (refusesBiquads(numBiquads, coefs))
        return 0;
    if (filter == nullptr || filter->filterFn != _DFIISOSfilter || filter->state == nullptr)
        return 0;
    auto *state = static_cast<_DFIISOSstate *>(filter->state);
    if (numBiquads != static_cast<uint32_t>(state->numBiquads))
        return 0;
    std::copy_n(coefs, size_t{biquadDoubles} * numBiquads, state->coefs);
    return 1;
}

int32_t ORVA_DestroyFilter(_ORVA_FILTER *filter)
{
    if (filter == nullptr)
        return 0;
    if (filter->state == nullptr) {
        KTDEBUG_Error(-1, "ORVA_DestroyFilter: Filter state is NULL!");
    } else if (filter->filterFn == _DFIIfilter) {
        auto *state = static_cast<_DFIIstate *>(filter->state);
        std::free(state->memory);
        std::free(state->numerator);
        std::free(state->denominator);
        std::free(state);
    } else if (filter->filterFn == _DFIISOSfilter) {
        auto *state = static_cast<_DFIISOSstate *>(filter->state);
        std::free(state->coefs);
        std::free(state->memory);
        std::free(state);
    } else {
        // The kind of the state is unknown, so it is not freed.
        KTDEBUG_Error(-1, "ORVA_DestroyFilter: Invalid filter type!");
    }
    std::free(filter);
    return 1;
}
