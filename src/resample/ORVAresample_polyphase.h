// The polyphase converter.
#pragma once

#include "resample/ORVAresample_bank.h"

#include <cstdint>

namespace orva
{

// Coefficients and history stand as the kernels read them: the phases in one bank, and the delay line in `work`, where each
// block is added to it. So a sample is widened and stored once.
struct PolyphaseResampler {
    double *work; // oldest sample first: `history` samples, then room for as many again and for a block
    int32_t workCapacity; // longest block that there is room for
    double *coefs;        // of the bank
    PolyphaseBank bank;
    int32_t upFactor;   // L
    int32_t downFactor; // M
    int32_t phase;      // of the next output, in L-ths of an input sample; below 0 once flushed
    int32_t tapsPerPhase;
    int32_t history;       // samples before a block that its outputs read
    int32_t ahead;         // samples after a block that others of their groups take: zeros
    int64_t end;           // of the samples in `work`
    int32_t nextSample;    // counted from the beginning of a period, M samples that make L outputs
    int32_t finiteSamples; // finite samples at the end of the delay line, at most `history`
    int32_t delayToSkip;   // output samples still to drop
    int32_t delay;         // of the filter, in output samples; later those left to flush
};

constexpr int64_t maxDesignBytes = int64_t{1} << 30;

// The bytes that the design of a polyphase converter counts as; -1 where its filter's length does not fit into 32 bits.
int64_t polyphaseDesignBytes(int32_t order, int32_t upFactor, int32_t downFactor);

// Of a filter with `prototypeOrder` + 1 taps, in output samples, computed and rounded in single precision.
int32_t polyphaseDelay(int32_t prototypeOrder, int32_t downFactor);

// Null when it takes too much, or memory is out. `order` and the rates are at least 1.
PolyphaseResampler *newPolyphase(int32_t inputRate, int32_t outputRate, int32_t order, bool compensates);
void freePolyphase(PolyphaseResampler *resampler);
int32_t runPolyphase(PolyphaseResampler *resampler, const float *input, float *output, int32_t count);
int32_t flushPolyphase(PolyphaseResampler *resampler, float *output, int32_t maxCount);

} // namespace orva
