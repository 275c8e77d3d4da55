/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Spectrum utilities: aligned complex vectors, power to decibels, the response of a pre-emphasis, products.
 *
 *  Spectra are laid out as told at ::ORVA_FFT: bins 0 to M, M = floor(N / 2), for a transform of N samples.
 *
 *  Decibels are relative to the transform: with a norm of 1, 0 dB is a power of M * M, which a sine of height
 *  1 in the middle of a bin has without a window. A window of mean g (ORVA_GetWindowNormFactor()) multiplies
 *  the amplitude of that sine by g and its power by g * g. Power is divided by the square root of the norm,
 *  so a norm of g to the fourth brings the sine back to 0 dB.
 *
 *      double g = ORVA_GetWindowNormFactor(window, 1024);
 *      float adjustment[516], power[516], decibels[516];            // all aligned to 16 bytes
 *      ORVA_CreatePreEmphAdjust(adjustment, 1024, 0.97);            // decibels as after a pre-emphasis
 *
 *      ORVA_FFTProcExecutePSDEx(fft, frame, power, work);
 *      ORVA_PSDtoDB(1024, power, decibels, adjustment, g * g * g * g, 120.0);    // -120 dB and above
 */
#ifndef ORVA_ORVACOMPLEX_H
#define ORVA_ORVACOMPLEX_H

#include <orva/ORVAfft.h>

/** Allocates a vector for the complex data of a processor, aligned as transforms need it.
 *
 *  @param fft  a processor of either direction, of length N.
 *  @return     room for N complex values, which is more than the bins need, and for four at least, so that it
 *              serves as work array at every length. Not initialised; to be freed by
 *              ORVA_DestroyComplexVector(). Null when `fft` is null, N is zero or below, or memory is out.
 *
 *  Threads: any.   Real time: no (allocates).
 */
ORVA_API ORVA_COMPLEX *ORVA_CreateComplexVector(const ORVA_FFT *fft);

/** Frees a vector of ORVA_CreateComplexVector().
 *
 *  @param vector  the vector, gone after the call, or null.
 *  @return        true, or false for null.
 *
 *  Threads: any.   Real time: no (frees memory).
 */
ORVA_API bool ORVA_DestroyComplexVector(ORVA_COMPLEX *vector);

/** Computes the magnitude response of the pre-emphasis 1 - a z^-1 at each bin, for ORVA_PSDtoDB():
 *
 *      output[i] = sqrt((1 - cos(w) 2 a) + a a),  w = pi i / M,  i = 0 .. M,  M = N / 2 cut toward zero
 *
 *  in double, rounded to float at the store.
 *
 *  @param output       out: M + 1 floats, any alignment; null writes nothing.
 *  @param length       N. For N of -1, 0 and 1, M is 0: one value is written, not-a-number. For N below -1,
 *                      nothing is written.
 *  @param coefficient  a; 0 gives 1 everywhere.
 *  @return             true.
 *
 *  Room: ORVA_PSDtoDB() asks more of its `adjustment` than this call of its `output`: alignment to 16 bytes,
 *  and room for up to two floats past bin M.
 *
 *  Threads: any.   Real time: yes (no heap, lock, log or system call); each bin takes a cosine and a root, so
 *  call it before the stream starts.
 */
ORVA_API bool ORVA_CreatePreEmphAdjust(float *output, int32_t length, double coefficient);

/** Converts the power of each bin to decibels, with a floor.
 *
 *      output[i] = max(10 log10(power[i] / (M M) * adjustment[i]^2 / sqrt(norm)), -range),  i = 0 .. M
 *
 *  A bin whose scaled power is not above zero gives -range; so does one that is not a number.
 *
 *  Bins 0 to M - 1 are computed in float, four at a time, by a fast logarithm: within 7e-5 dB of the exact
 *  value, and 385.3 dB for infinite power; scaled power between 0 and 1.18e-38 counts as 1.18e-38. Bin M is
 *  computed by the double logarithm of the C library. The small step between it and its neighbour is
 *  deliberate.
 *
 *  @param length      N, samples of the transform. At 1, M is 0, and the one bin is divided by zero.
 *  @param power       4 * ceil(M / 4) floats and M + 1 at least, aligned to 16 bytes; the values past bin M
 *                     are read, but change nothing. What ORVA_FFTProcExecutePSDEx() asks for is enough.
 *  @param output      out: room and alignment as `power`, which it may be; past bin M it holds values
 *                     without meaning.
 *  @param adjustment  a magnitude gain for each bin, room and alignment as `power`; null is 1 everywhere.
 *  @param norm        divides the power through its square root; 1.0 for none, g to the fourth for a window
 *                     with the mean g. Not checked: zero makes every power infinite, and a negative norm
 *                     makes every bin -range.
 *  @param range       the floor is -range, in decibels.
 *  @return            true; false, nothing written, when N is zero or below or `power` or `output` is null.
 *
 *  Precision of the logarithm, compared with the double one over all normal floats: ln(x) is within 3.9e-6,
 *  and within 8.2e-8 of its own size (0.83 units in the last place). It gives the same bits on every machine
 *  and at every position in a vector.
 *
 *  Threads: any.   Real time: yes (no heap, lock, log or system call).
 *  Source: S. L. Moshier, Cephes Mathematical Library, logf.
 */
ORVA_API bool ORVA_PSDtoDB(int32_t length, const float *power, float *output, const float *adjustment,
                           double norm, double range);

/** Multiplies two complex vectors value by value, in float:
 *
 *      output[i].re = a[i].re b[i].re - a[i].im b[i].im
 *      output[i].im = a[i].im b[i].re + a[i].re b[i].im
 *
 *  @param a       `count` complex values, any alignment.
 *  @param b       `count` complex values, any alignment; may be `a`.
 *  @param output  out: `count` complex values, neither `a` nor `b`: each real part is stored before the
 *                 imaginary part is computed from the inputs, which would then be wrong.
 *  @param count   complex values; zero writes nothing.
 *  @return        true; false, nothing written, when a pointer is null or `count` is negative.
 *
 *  Threads: any.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API bool ORVA_ComplexVectorMultiply(const ORVA_COMPLEX *a, const ORVA_COMPLEX *b, ORVA_COMPLEX *output,
                                         int32_t count);

#endif
