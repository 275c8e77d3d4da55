// The converters as the files of this family and the tests of its private steps see them.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <numeric>

#include <orva/ORVAresample.h>

enum ResampleMode : int32_t { resamplePolyphase = 0, resampleZoh = 1 };

struct ORVA_RESAMPLER {
    int32_t mode; // a ResampleMode
    void *impl;   // owned: a PolyphaseResampler or a ZohResampler; null for a polyphase order below 1
};

struct PolyphaseResampler {
    double *work;         // the block as doubles, newest first, and behind it the delay line as it was before
    int32_t workCapacity; // longest block that `work` holds, the delay line apart
    double **phases;      // upFactor arrays of tapsPerPhase coefficients, one behind the other in one block
    double *ring;         // the delay line: the sample j steps old at (ringPosition + j) mod tapsPerPhase
    int32_t upFactor;     // L
    int32_t downFactor;   // M
    int32_t phase;        // of the next output, in L-ths of an input sample; below 0 once flushed
    int32_t tapsPerPhase;
    int32_t ringPosition; // of the newest sample; moves downward
    int32_t delayToSkip;  // output samples still to drop
    int32_t delay;        // of the filter, in output samples; later those left to flush
};

struct ZohResampler {
    int32_t upFactor;
    int32_t downFactor;
    uint32_t phase;          // of the next output, in L-ths of an input sample
    uint32_t inputCount;     // input samples seen; nothing reads it
    double *work;            // one block on its way into or out of the filter
    int32_t workCapacity;    // doubles
    int32_t outputsPerInput; // the most that one input can yield
    int32_t coefficientCount;
    int32_t upsampling; // 1: hold, then filter; 0: filter, then drop
    double *stateA;     // coefficientCount + 1 doubles; one allocation with stateB
    double *stateB;     // as many
    const double *denominator;
    const double *numerator;
};

constexpr int64_t maxDesignBytes = int64_t{1} << 30;

// The bytes that the design of a polyphase converter takes; -1 where its filter's length leaves 32 bits.
int64_t polyphaseDesignBytes(int32_t order, int32_t upFactor, int32_t downFactor);

// Of a filter with `prototypeOrder` + 1 taps, in output samples, computed and rounded in single precision.
int32_t polyphaseDelay(int32_t prototypeOrder, int32_t downFactor);

// Null when it takes too much, or memory is out. `order` is at least 1, the rates are.
PolyphaseResampler *newPolyphase(int32_t inputRate, int32_t outputRate, int32_t order, bool compensates);
void freePolyphase(PolyphaseResampler *resampler);
int32_t runPolyphase(PolyphaseResampler *resampler, const float *input, float *output, int32_t count);
int32_t flushPolyphase(PolyphaseResampler *resampler, float *output, int32_t maxCount);

// Null when memory is out, or the outputs to one input leave 32 bits.
ZohResampler *newZoh(int32_t inputRate, int32_t outputRate);
void freeZoh(ZohResampler *resampler);
int32_t runZoh(ZohResampler *resampler, const float *input, float *output, int32_t count);

// The error of whatever is out of range or out of memory.
void reportInvalidParameters();

// Makes room for `count` doubles, `capacity` being noted for it. False, with nothing changed, when memory is
// out.
bool growWork(double *&work, int32_t &workCapacity, int32_t capacity, int64_t count);

// `count` zeroed elements for free().
template <class T> T *newZeroed(int64_t count)
{
    return static_cast<T *>(std::calloc(static_cast<size_t>(count), sizeof(T)));
}
