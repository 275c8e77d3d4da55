// The record of a noise suppressor, and the step of one frame.
#pragma once

#include "noisesup/ORVAnoisesup_webrtc.h"

#include <kett/KTmem.h>
#include <orva/ORVAnoisesup.h>

#include <cstdint>

namespace orva
{

constexpr int32_t bandLength = 160;

// Both bands of a frame at 32000 Hz, and the state of the filter pair that splits or merges them.
struct QmfBlock {
    int16_t low[bandLength];
    int16_t high[bandLength];
    int32_t filterState1[6];
    int32_t filterState2[6];
};

// One frame from inputFrame to outputFrame. Always 1.
int32_t _noisesup_core(ORVA_NOISESUP *suppressor);

} // namespace orva

struct ORVA_NOISESUP {
    KT_MEM *memDescr; // owns this record and its blocks
    NsHandle *ns;
    int32_t sampleRate;
    int32_t frameSize;
    int16_t *inputFrame;
    int16_t *outputFrame;
    orva::QmfBlock *analysisBlock;  // 32000 Hz only
    orva::QmfBlock *synthesisBlock; // 32000 Hz only
};
