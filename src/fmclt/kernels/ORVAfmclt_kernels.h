// The hot loops of the lapped transform. Its bins and its twiddles are complex values, real part first: U[k] stands at
// bins[2k] and bins[2k + 1], W[k] likewise in the window.
#pragma once

#include "common/cpu.h"

#include <cstdint>

namespace orva
{

struct FmcltKernels {
    // From the transform of the samples to the coefficients:
    //
    //     V[k] = W[k] (U[k] s)                          k = 0 .. M
    //     real[k] + j imag[k] = j V[k] + V[k+1]         k = 0 .. M - 1
    void (*coefficientsOf)(const float *bins, const float *window, float *real, float *imag, int32_t M,
                           float s);

    // From the coefficients to the bins between the two outer ones:
    //
    //     Y[k] = conj(W[k]) (X[k-1] - j X[k]) / 4 g,    X[k] = real[k] + j imag[k],    k = 1 .. M - 1
    void (*innerBinsOf)(const float *real, const float *imag, const float *window, float *bins, int32_t M,
                        float g);

    // output[i] = first[i] / d + overlap[i],  overlap[i] = second[i] / d
    void (*overlapAdd)(const float *first, const float *second, float *output, float *overlap, int32_t count,
                       double d);

    // data[i] = data[i] / s
    void (*divide)(float *data, int32_t count, float s);
};

template <> const FmcltKernels &kernelsAt<FmcltKernels, Level::plain>();

} // namespace orva
