// The filter object as the files of this family and the tests of its private steps see it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <orva/ORVAfilter.h>

// The handle. The value of `filterFn` is also the filter's type tag.
struct _ORVA_FILTER {
    int32_t (*filterFn)(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                        uint32_t offset, uint32_t stride);
    int32_t (*resetFn)(_ORVA_FILTER *filter);
    int32_t (*copyMemFn)(_ORVA_FILTER *destination, const _ORVA_FILTER *source);
    void *state;         // owned: a _DFIIstate or a _DFIISOSstate
    int32_t kind;        // 0 low-pass, 1 high-pass, 2 band-pass, 3 band-reject; 0 if made from given numbers
    int32_t numChannels; // channels per frame
};

// Direct form of any order, in single precision.
struct _DFIIstate {
    int32_t order;      // the larger of numOrder and denOrder
    int32_t numOrder;   // taps in `numerator`
    int32_t denOrder;   // taps in `denominator`
    int32_t position;   // the ring row of the current frame, 0 .. order; moves downward
    float *memory;      // the ring of order + 1 rows: w of channel c in row r at r * numChannels + c
    float *numerator;   // b(k+1) / a(0)
    float *denominator; // a(k+1) / a(0)
    float gain;         // b(0) / a(0)
};

// Cascade of second-order sections, in double precision.
struct _DFIISOSstate {
    double *coefs;            // numBiquads records a1, a2, b0, b1, b2
    double *memory;           // w of section s, channel c, slot t at (t * numChannels + c) * numBiquads + s
    int32_t allocatedBiquads; // the section count of a filter made from records, else 0; nothing reads it
    int32_t numBiquads;       // sections
    int32_t position;         // the slot of the current frame, 0 .. 3; moves downward
};

constexpr uint32_t biquadDoubles = 5;  // doubles in a record
constexpr uint32_t biquadSlots = 4;    // a frame uses three; the fourth makes the wrap a mask
constexpr uint32_t maxBiquads = 65536; // records that a host may hand over

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

// `count` zeroed elements for free(); null only when memory is out, so that no element is no failure.
template <class T> T *newZeroed(size_t count)
{
    return static_cast<T *>(std::calloc(count > 0 ? count : 1, sizeof(T)));
}

// The last position where a frame may start. Compared as signed 32-bit numbers, as are the starts: below zero
// there is no frame, and the wrap of counts from 2^31 on is meant.
inline int64_t lastFrameStart(uint32_t numSamples, int32_t numChannels)
{
    return static_cast<int32_t>(numSamples - static_cast<uint32_t>(numChannels));
}
