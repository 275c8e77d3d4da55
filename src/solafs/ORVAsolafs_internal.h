// The record of one channel, and its positions.
//
// A stream position counts samples of the channel from the first one taken. The sample at stream position p
// lives at buffer[p + similarityLength - bufferBase]: the buffer opens with a lead-in of silence,
// similarityLength long, so that the search can look before position 0. bufferEnd counts in these padded
// positions as well.
#pragma once

#include <kett/KTmem.h>
#include <orva/ORVAsolafs.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace orva
{

constexpr int32_t correlationStep = 8; // samples from one comparison point to the next
constexpr int32_t skewStep = 4;        // samples from one candidate skew to the next

// One stretch of input fed at one speed.
struct SolafsSegment {
    int32_t inputStart; // input position of its first sample
    int32_t inputEnd;   // one past its last sample; written and never read
    int32_t outputEnd;  // estimated output position at its end, cumulative
    float speed;
};

} // namespace orva

struct ORVA_SOLAFS {
    KT_MEM *memDescr;              // owns the record and all its arrays
    float speed;                   // now applied
    int32_t frameLength;           // a multiple of 8
    int32_t similarityLength;      // compared in the search
    int32_t overlapLength;         // of the cross-fade
    int32_t maxSkew;               // upper end of the skew range
    int32_t correlationDecimation; // orva::correlationStep; nothing reads it
    int32_t skewDecimation;        // orva::skewStep; nothing reads it
    int32_t hop;                   // of synthesis
    int32_t lastAnalysisA;         // analysis position of the previous hop
    int32_t lastAnalysisB;         // the analysis position once more, see updateSkew()
    int32_t skew;                  // in use
    int32_t bufferCapacity;        // slots in buffer
    int32_t bufferEnd;             // padded position one past the newest sample
    int32_t outputPosition;        // output spanned so far, in steps of hop
    int32_t positionBias;          // keeps the analysis position continuous over speed changes
    int32_t matchPosition;         // where the last matched stretch ended
    int32_t bufferBase;            // slots by which the buffer has been shifted down
    int32_t channelStride;         // between samples of this channel in the caller's arrays
    float *fadeRamp;               // overlapLength rising weights
    float *reference;              // similarityLength / 8 samples that the search compares with
    int32_t *referenceOffsets;     // similarityLength / 8 positions of the comparison points, relative
    float *buffer;                 // input, shifted down by copying
    float *overlap;                // continuation of the previous match, then the hop's output
    std::array<orva::SolafsSegment, 256> segments;
    int32_t nextSegment;     // the entry to bring into force next
    int32_t segmentCount;    // entries in use
    int32_t pendingSegments; // recorded but not yet in force
    float *searchWork;       // searchWorkLength() numbers, in the block of `reference`
};

namespace orva
{

// Toward zero; beyond the range of int32 the nearest end of it, not-a-number gives 0.
inline int32_t truncatedInRange(float x)
{
    constexpr float limit = 2147483648.0f; // 2^31
    if (std::isnan(x))
        return 0;
    if (x >= limit)
        return std::numeric_limits<int32_t>::max();
    if (x < -limit)
        return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(x);
}

// The ideal place in the input for what is played at outputPosition. Single precision throughout: past 2^24
// samples it moves in steps.
inline int32_t analysisPosition(const ORVA_SOLAFS *solafs)
{
    return truncatedInRange(static_cast<float>(solafs->outputPosition) * solafs->speed +
                            static_cast<float>(solafs->positionBias));
}

// Slots of the buffer that hold samples, the lead-in included. Below 0 where the analysis has run past the end of the
// input.
inline int64_t slotsHeld(const ORVA_SOLAFS *solafs)
{
    return int64_t{solafs->bufferEnd} - solafs->bufferBase;
}

// The slot of a stream position; it may lie outside of those that hold samples. There are such positions only where a
// speed outruns the input (above 3.0) or runs backward, and they read as 0.
inline int64_t slotOf(const ORVA_SOLAFS *solafs, int64_t position)
{
    return position + solafs->similarityLength - solafs->bufferBase;
}

// Notes that `taken` samples come in at this speed, and stretches the entry that they belong to. Called
// before bufferEnd counts them.
void recordSpeed(ORVA_SOLAFS *solafs, float speed, int32_t taken);

// Numbers that searchWork holds.
int64_t searchWorkLength(const ORVA_SOLAFS *solafs);

// Sets the skew to the first of the best candidates, or to 0 if none correlates positively. `analysis` is the
// position of this hop; overlap holds the continuation of the last match.
void findSkew(ORVA_SOLAFS *solafs, int32_t analysis);

} // namespace orva
