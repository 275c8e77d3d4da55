// Filters from numbers that the host already has.
#include "filter/ORVAfilter_internal.h"

#include <algorithm>
#include <limits>

namespace
{

// ratios[k] = values[k+1] / leading. The division is double; the quotient is rounded to float.
void normalise(const double *values, double leading, int32_t order, float *ratios)
{
    for (int32_t k = 0; k < order; ++k)
        ratios[k] = static_cast<float>(values[k + 1] / leading);
}

} // namespace

_ORVA_FILTER *ORVA_CreateFilterFromCoefs(uint32_t numChannels, int32_t numCount, const double *numerator,
                                         uint32_t denCount, const double *denominator)
{
    constexpr uint32_t largest = std::numeric_limits<int32_t>::max();
    if (numChannels > largest || numCount < 1 || denCount < 1 || denCount > largest)
        return nullptr;
    if (numerator == nullptr || denominator == nullptr)
        return nullptr;

    auto *filter = newZeroed<_ORVA_FILTER>(1);
    auto *state = newZeroed<_DFIIstate>(1);
    if (filter == nullptr || state == nullptr) {
        std::free(filter);
        std::free(state);
        return nullptr;
    }
    state->numOrder = numCount - 1;
    state->denOrder = static_cast<int32_t>(denCount) - 1;
    state->order = std::max(state->numOrder, state->denOrder);
    state->memory = newZeroed<float>((static_cast<size_t>(state->order) + 1) * numChannels);
    state->numerator = newZeroed<float>(static_cast<size_t>(state->numOrder));
    state->denominator = newZeroed<float>(static_cast<size_t>(state->denOrder));
    *filter = {.filterFn = _DFIIfilter,
               .resetFn = _DFIIreset,
               .copyMemFn = _DFIIcopyMem,
               .state = state,
               .kind = 0,
               .numChannels = static_cast<int32_t>(numChannels)};
    if (state->memory == nullptr || state->numerator == nullptr || state->denominator == nullptr) {
        ORVA_DestroyFilter(filter);
        return nullptr;
    }
    state->gain = static_cast<float>(numerator[0] / denominator[0]);
    normalise(numerator, denominator[0], state->numOrder, state->numerator);
    normalise(denominator, denominator[0], state->denOrder, state->denominator);
    return filter;
}

_ORVA_FILTER *newBiquadFilter(int32_t numChannels, int32_t numBiquads)
{
    if (numChannels < 0 || numBiquads < 0)
        return nullptr;
    auto *filter = newZeroed<_ORVA_FILTER>(1);
    auto *state = newZeroed<_DFIISOSstate>(1);
    if (filter == nullptr || state == nullptr) {
        std::free(filter);
        std::free(state);
        return nullptr;
    }
    const auto sections = static_cast<size_t>(numBiquads);
    state->numBiquads = numBiquads;
    state->coefs = newZeroed<double>(biquadDoubles * sections);
    state->memory = newZeroed<double>(biquadSlots * sections * static_cast<size_t>(numChannels));
    *filter = {.filterFn = _DFIISOSfilter,
               .resetFn = _DFIISOSreset,
               .copyMemFn = _DFIISOScopyMem,
               .state = state,
               .kind = 0,
               .numChannels = numChannels};
    if (state->coefs == nullptr || state->memory == nullptr) {
        ORVA_DestroyFilter(filter);
        return nullptr;
    }
    return filter;
}

_ORVA_FILTER *ORVA_CreateFilterFromBiquads(int32_t numChannels, uint32_t numBiquads, const double *coefs)
{
    if (refusesBiquads(numBiquads, coefs))
        return nullptr;
    const auto sections = static_cast<int32_t>(numBiquads);
    auto *filter = newBiquadFilter(numChannels, sections);
    if (filter == nullptr)
        return nullptr;
    auto *state = static_cast<_DFIISOSstate *>(filter->state);
    state->allocatedBiquads = sections;
    std::copy_n(coefs, size_t{biquadDoubles} * numBiquads, state->coefs);
    return filter;
}
