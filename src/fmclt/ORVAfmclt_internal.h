// The record of a lapped transform processor.
#pragma once

#include <orva/ORVAfmclt.h>

#include <fftw3.h>

#include <cstdint>

struct ORVA_FMCLT {
    int32_t blockLength;    // M
    float *buffer;          // from fftwf_malloc, M + 1 complex values; direct and inverse run in place in it
    fftwf_plan planDirect;  // real to complex, 2M
    fftwf_plan planInverse; // complex to real, 2M
    fftwf_plan planTrig;    // type-IV sine transform, M
};
