// The filter object as the files of this family and the tests of its private steps see it.
#pragma once

#include "filter/ORVAfilter_state.h"

#include <orva/ORVAfilter.h>

#include <cstdint>

// The handle. The value of `filterFn` is also the filter's type tag.
struct _ORVA_FILTER {
    int32_t (*filterFn)(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                        uint32_t offset, uint32_t stride);
    int32_t (*resetFn)(_ORVA_FILTER *filter);
    int32_t (*copyMemFn)(_ORVA_FILTER *destination, const _ORVA_FILTER *source);
    void *state;         // owned: a _DFIIstate or a _DFIISOSstate
    int32_t kind;        // a Kind; 0 if made from given numbers
    int32_t numChannels; // channels per frame
};

namespace orva
{

inline constexpr uint32_t maxBiquads = 65536; // records that a host may hand over

int32_t _DFIIfilter(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                    uint32_t offset, uint32_t stride);
int32_t _DFIIreset(_ORVA_FILTER *filter);
int32_t _DFIIcopyMem(_ORVA_FILTER *destination, const _ORVA_FILTER *source);

int32_t _DFIISOSfilter(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                       uint32_t offset, uint32_t stride);
int32_t _DFIISOSreset(_ORVA_FILTER *filter);
int32_t _DFIISOScopyMem(_ORVA_FILTER *destination, const _ORVA_FILTER *source);

// A biquad filter of kind 0 whose records and memories are all zero; null for a negative count and when
// memory is out.
_ORVA_FILTER *newBiquadFilter(int32_t numChannels, int32_t numBiquads);

// What creating and updating have in common: null records are refused in silence, too many with a message.
bool refusesBiquads(uint32_t numBiquads, const double *coefs);

// The last position where a frame may start. Compared as signed 32-bit numbers, as are the starts: below zero
// there is no frame, and the wrap of counts from 2^31 on is deliberate.
inline int64_t lastFrameStart(uint32_t numSamples, int32_t numChannels)
{
    return static_cast<int32_t>(numSamples - static_cast<uint32_t>(numChannels));
}

} // namespace orva
