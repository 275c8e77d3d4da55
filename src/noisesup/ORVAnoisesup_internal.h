// The record of a noise suppressor, and the steps of one frame.
#pragma once

#include "noisesup/ORVAnoisesup_webrtc.h"

#include <cstdint>

#include <kett/KTmem.h>
#include <orva/ORVAnoisesup.h>

constexpr int32_t bandLength = 160;

// Both bands of a frame at 32000 Hz, and the state of the filter pair that splits or merges them.
struct QmfBlock {
    int16_t low[bandLength];
    int16_t high[bandLength];
    int32_t filterState1[6];
    int32_t filterState2[6];
};

struct ORVA_NOISESUP {
    KT_MEM *memDescr; // owns this record and its blocks
    NsHandle *ns;
    int32_t sampleRate;
    int32_t frameSize;
    int16_t *inputFrame;
    int16_t *outputFrame;
    QmfBlock *analysisBlock;  // 32000 Hz only
    QmfBlock *synthesisBlock; // 32000 Hz only
};

// One frame from inputFrame to outputFrame. Always 1.
int32_t _noisesup_core(ORVA_NOISESUP *suppressor);

// A sample of the suppressor in 16 bits. The lower threshold is -32678 and not the limit of 16 bits, on which stored
// results depend: what lies below becomes -32768. Not-a-number gives 0.
int16_t narrowed(float v);
