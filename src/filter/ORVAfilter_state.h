// What the two structures keep from call to call.
#pragma once

#include <cstdint>

namespace orva
{

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

inline constexpr uint32_t biquadDoubles = 5; // doubles in a record
inline constexpr uint32_t biquadSlots = 4;   // a frame uses three; the fourth makes the wrap a mask

} // namespace orva
