// The record of a cross-correlation processor.
#pragma once

#include <kett/KTmem.h>
#include <orva/ORVAfft.h>
#include <orva/ORVAxcorr.h>

struct ORVA_XCORR {
    KT_MEM *memory;    // owns this record and the four buffers
    int32_t fftLength; // 2 L, L being the larger of the two lengths: the circular correlation does not wrap
    int32_t bins;      // L + 1
    int32_t lengthX;
    int32_t lengthY;
    ORVA_FFT *fft;
    ORVA_FFT *ifft;
    float *bufferX;          // fftLength
    float *bufferY;          // fftLength
    ORVA_COMPLEX *spectrumX; // bins
    ORVA_COMPLEX *spectrumY; // bins
};
