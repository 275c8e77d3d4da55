/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  The modulated complex lapped transform of a stream, by the fast algorithm (FMCLT), and its inverse.
 *
 *  A block of M samples, with the M samples before it, gives M complex coefficients, kept as two arrays `real` and `imag`.
 *  Coefficient k stands for the frequency (k + 1/2) / (2M) of the sampling rate. The sine window of the lapped transform is
 *  not applied to the samples: a combination of neighbouring bins of one FFT of length 2M realises it.
 *
 *      ORVA_FMCLT *fmclt = ORVA_FMCLTProcCreate(M);
 *      ORVA_FMCLTFreqWindow(window, M);                     // 2 (M + 1) floats, once for an M
 *      memset(history, 0, sizeof history);                  // M floats, a stream's own
 *      memset(overlap, 0, sizeof overlap);                  // M floats, a stream's own
 *      for (each block of M samples) {
 *          ORVA_FMCLTDirect(fmclt, real, imag, block, history, window);
 *          ...                                              // change the coefficients
 *          ORVA_FMCLTInverse(fmclt, real, imag, block, overlap, window);
 *      }
 *
 *  Delay: one block. Output block b holds input block b - 1, so the first belongs to the silence before the stream, and one
 *  block of zeros after the last brings out the end. If 4 divides M, the stream comes back exactly, up to rounding. For any
 *  other M an error remains at the highest frequencies, since the inverse computes its last bin as is right only when 4
 *  divides M. Choose an M that 4 divides.
 *
 *  A processor keeps no state of a stream, so that one can serve several channels in turn; it belongs to one thread at a
 *  time. Arrays are not checked for null. Values pass through FFTW, which chooses its code by processor and wisdom, so their
 *  last bits may differ from machine to machine.
 *
 *  Audio threads: the three transforms make no heap call, lock, log or system call of their own, but FFTW allocates while
 *  it executes some of these plans, so none of the three is promised to be free of it. Measured with FFTW 3.3.10 as Debian
 *  builds it, without a heap call: direct at M = 1, 2, 3, 4, 5, 7, 8, 12, 16, 20, 31, 32, 64, 100, 128, 256, 512, 1024, 2048
 *  and 4096; inverse at the same M up to 32, and at 100 and 128. With one or two heap calls in each execution: direct at 48,
 *  63, 65, 480 and 1000; inverse at these, at 64 and 256, and from 512 on; the sine transform at every M.
 *
 *  Source: H. S. Malvar, "Fast algorithm for the modulated complex lapped transform", IEEE Signal Processing Letters 10
 *  (2003).
 */
#ifndef ORVA_ORVAFMCLT_H
#define ORVA_ORVAFMCLT_H

#include <orva/ORVAtypes.h>

/** A processor for one block length: three plans and the buffer that they run in. */
typedef struct ORVA_FMCLT ORVA_FMCLT;

/** Makes a processor.
 *
 *  @param blockLength  M, samples in a block, 1 to 268435456 (2^28).
 *  @return             the processor, owned by the caller until ORVA_FMCLTProcDestroy(); null for any other length, when
 *                      memory is out and in a child of fork() that has lost FFTW's planner (orva/ORVAcore.h).
 *
 *  Memory: a buffer of 2 M + 2 floats, beside what FFTW keeps for its three plans.
 *  Threads: any, but not between ORVA_FinalizeFFT() and a new ORVA_InitializeFFT().   Real time: no (allocates, plans under
 *  a lock).
 */
ORVA_API ORVA_FMCLT *ORVA_FMCLTProcCreate(int32_t blockLength);

/** Destroys a processor.
 *
 *  @param fmclt  the processor, gone after the call; null does nothing.
 *  @return       1, or 0 for null.
 *
 *  Threads: as ORVA_FMCLTProcCreate(), while no other uses the processor.   Real time: no (frees memory, takes a lock).
 */
ORVA_API int32_t ORVA_FMCLTProcDestroy(ORVA_FMCLT *fmclt);

/** Fills the twiddles that direct and inverse take: entry k is exp(-2 pi j ((2k + 1) / 8 + k / (4M))), k = 0 .. M.
 *
 *  @param window       out: M + 1 complex values, real part first, that is 2 (M + 1) floats, any alignment.
 *  @param blockLength  M. A negative one does nothing; 0 writes one entry of not-a-number, as the formula does.
 *
 *  Precision: double, with k and M taken through float first; each part rounded once.
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call; O(M) sines and cosines).
 */
ORVA_API void ORVA_FMCLTFreqWindow(float *window, int32_t blockLength);

/** One block forward. With u the `history` followed by the `current` block, n = 0 .. 2M - 1:
 *
 *      real[k] = - sqrt(2 / M) sum of u[n] sin((n + 1/2) pi / 2M) cos((n + (M + 1) / 2) (k + 1/2) pi / M)
 *      imag[k] =   sqrt(2 / M) sum of u[n] sin((n + 1/2) pi / 2M) sin((n + (M + 1) / 2) (k + 1/2) pi / M)
 *
 *  @param fmclt    a processor; null does nothing.
 *  @param real     out: M floats.
 *  @param imag     out: M floats.
 *  @param current  M samples.
 *  @param history  in and out: the M samples before, zeros at the start of a stream; becomes a copy of `current`.
 *  @param window   the twiddles from ORVA_FMCLTFreqWindow().
 *
 *  Threads: one at a time for a processor.   Real time: no (FFTW may allocate; nothing of our own does).
 */
ORVA_API void ORVA_FMCLTDirect(ORVA_FMCLT *fmclt, float *real, float *imag, const float *current,
                               float *history, const float *window);

/** One block back, by overlap and add.
 *
 *  @param fmclt    a processor; null does nothing.
 *  @param real     M floats.
 *  @param imag     M floats.
 *  @param output   out: M samples, the block before the one that was transformed; not `overlap`.
 *  @param overlap  in and out: M floats, zeros at the start of a stream.
 *  @param window   the twiddles from ORVA_FMCLTFreqWindow().
 *
 *  Threads: one at a time for a processor.   Real time: no (FFTW may allocate; nothing of our own does).
 */
ORVA_API void ORVA_FMCLTInverse(ORVA_FMCLT *fmclt, const float *real, const float *imag, float *output,
                                float *overlap, const float *window);

/** The orthonormal type-IV sine transform of length M, in place; its own inverse. (The name reads as a cosine transform;
 *  the transform is the sine one.)
 *
 *      data[k] = sqrt(2 / M) sum of data[n] sin(pi (n + 1/2) (k + 1/2) / M)
 *
 *  @param fmclt  a processor; null does nothing.
 *  @param data   in and out: M floats, aligned as by fftwf_malloc, 16 bytes at least.
 *
 *  Threads: any, also several on one processor, each with its own data.   Real time: no (FFTW allocates at every
 *  M; nothing of our own).
 */
ORVA_API void ORVA_FMCLTCDTiv(ORVA_FMCLT *fmclt, float *data);

#endif
