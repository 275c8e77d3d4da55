#include "host.h"

#include <string.h>

enum { M = 8 };

void use_lapped_transform(void)
{
    float window[2 * (M + 1)], real[M], imag[M], output[M], history[M] = {0}, overlap[M] = {0};
    ORVA_FMCLT *fmclt = ORVA_FMCLTProcCreate(M);
    check(fmclt != NULL, "a lapped transform");
    ORVA_FMCLTFreqWindow(window, M);
    check(near((double) window[0], 0.70710678, 1e-6) && near((double) window[1], -0.70710678, 1e-6),
          "its first twiddle");
    float last[M] = {0}, block[M];
    for (int b = 0; b < 4; ++b) {
        for (int n = 0; n < M; ++n)
            block[n] = (float) ((b * 7 + n * 5) % 11 - 5);
        ORVA_FMCLTDirect(fmclt, real, imag, block, history, window);
        check(memcmp(history, block, sizeof block) == 0, "the block becomes history");
        ORVA_FMCLTInverse(fmclt, real, imag, output, overlap, window);
        for (int n = 0; n < M; ++n)
            check(near((double) output[n], (double) last[n], 1e-5), "the block before comes back");
        memcpy(last, block, sizeof last);
    }
    ORVA_FFT *fft = ORVA_FFTProcCreate(M);
    float *data = (float *) ORVA_CreateComplexVector(fft); /* for its alignment */
    for (int n = 0; n < M; ++n)
        data[n] = n == 2 ? 1.0f : 0.0f;
    ORVA_FMCLTCDTiv(fmclt, data);
    check(near((double) data[0], 0.5 * 0.47139674, 1e-6),
          "sin(2.5 pi / 16) / 2, the first of a sine transform");
    ORVA_FMCLTCDTiv(fmclt, data);
    check(near((double) data[2], 1, 1e-6) && near((double) data[3], 0, 1e-6), "it is its own inverse");
    ORVA_DestroyComplexVector((ORVA_COMPLEX *) data);
    ORVA_FFTProcDestroy(fft);
    check(ORVA_FMCLTProcDestroy(fmclt) == 1, "the lapped transform destroyed");
}
