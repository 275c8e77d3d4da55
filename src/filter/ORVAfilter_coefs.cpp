// Filters from numbers that the host already has.
#include <orva/ORVAfilter.h>

#include "common/memory.h"
#include "filter/ORVAfilter_internal.h"

#include <algorithm>
#include <limits>

using namespace orva;

namespace orva
{
namespace
{

// ratios[k] = values[k+1] / leading. The division is double; the quotient is rounded to float.
void normalise(const double *values, double leading, int32_t order, float *ratios)
{
    for (int32_t k = 0; k < order; ++k)
        ratios[k] = static_cast<float>(values[k + 1] / leading);
}

} // namespace

_ORVA_FILTER *newBiquadFilter(int32_t numChannels, int32_t numBiquads)
{
    if (numChannels < 0 || numBiquads < 0)
        return nullptr;
    const auto sections = static_cast<size_t>(numBiquads);
    auto filter = ownZeroed<_ORVA_FILTER>(1);
    auto state = ownZeroed<_DFIISOSstate>(1);
    auto coefs = ownZeroed<double>(biquadDoubles * sections);
    auto memory = ownZeroed<double>(biquadSlots * sections * static_cast<size_t>(numChannels));
    if (filter == nullptr || state == nullptr || coefs == nullptr || memory == nullptr)
        return nullptr;
    *state = {.coefs = coefs.release(),
              .memory = memory.release(),
              .allocatedBiquads = 0,
              .numBiquads = numBiquads,
              .position = 0};
    *filter = {.filterFn = _DFIISOSfilter,
               .resetFn = _DFIISOSreset,
               .copyMemFn = _DFIISOScopyMem,
               .state = state.release(),
               .kind = 0,
               .numChannels = numChannels};
    return filter.release();
}

} // namespace orva

_ORVA_FILTER *ORVA_CreateFilterFromCoefs(uint32_t numChannels, int32_t numCount, const double *numerator,
                                         uint32_t denCount, const double *denominator)
{
    constexpr uint32_t largest = std::numeric_limits<int32_t>::max();
    if (numChannels > largest || numCount < 1 || denCount < 1 || denCount > largest)
        return nullptr;
    if (numerator == nullptr || denominator == nullptr)
        return nullptr;

    const int32_t numOrder = numCount - 1;
    const int32_t denOrder = static_cast<int32_t>(denCount) - 1;
    const int32_t order = std::max(numOrder, denOrder);
    auto filter = ownZeroed<_ORVA_FILTER>(1);
    auto state = ownZeroed<_DFIIstate>(1);
    auto memory = ownZeroed<float>((static_cast<size_t>(order) + 1) * numChannels);
    auto numeratorRatios = ownZeroed<float>(static_cast<size_t>(numOrder));
    auto denominatorRatios = ownZeroed<float>(static_cast<size_t>(denOrder));
    if (filter == nullptr || state == nullptr || memory == nullptr || numeratorRatios == nullptr ||
        denominatorRatios == nullptr)
        return nullptr;
    normalise(numerator, denominator[0], numOrder, numeratorRatios.get());
    normalise(denominator, denominator[0], denOrder, denominatorRatios.get());
    *state = {.order = order,
              .numOrder = numOrder,
              .denOrder = denOrder,
              .position = 0,
              .memory = memory.release(),
              .numerator = numeratorRatios.release(),
              .denominator = denominatorRatios.release(),
              .gain = static_cast<float>(numerator[0] / denominator[0])};
    *filter = {.filterFn = _DFIIfilter,
               .resetFn = _DFIIreset,
               .copyMemFn = _DFIIcopyMem,
               .state = state.release(),
               .kind = 0,
               .numChannels = static_cast<int32_t>(numChannels)};
    return filter.release();
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
