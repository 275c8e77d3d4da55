/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Cross-correlation of two real vectors at all lags, through the FFT.
 *
 *  With L the larger of the two lengths, the result has 2L - 1 values in order of lag, from -(L - 1) to L - 1,
 *  whichever vector is the longer: index j holds lag j - (L - 1), and lag 0 is at index L - 1. The value at
 *  lag t is
 *
 *      r(t) = sum over n of x[n + t] y[n]        x and y zero outside their lengths
 *
 *  so a positive lag means that x is the delayed one: if x[n] = y[n - d], the peak stands at lag d.
 *
 *      ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(1024, 1024);
 *      float *r = malloc((size_t) ORVA_XcorrVectorLength(xcorr) * sizeof *r);
 *      for (each pair of frames)
 *          ORVA_XcorrPhatProcess(xcorr, x, y, r);             // peak at index 1023 + delay
 *      ORVA_XcorrProcDestroy(xcorr);
 *
 *  A processor belongs to one thread at a time; different processors run in parallel. The transform length is
 *  exactly 2L, not a larger power of two: lengths with small prime factors run fastest. Values pass through
 *  FFTW, which chooses its code by processor and wisdom, so their last bits may differ from machine to
 *  machine.
 */
#ifndef ORVA_ORVAXCORR_H
#define ORVA_ORVAXCORR_H

#include <orva/ORVAtypes.h>

/** A cross-correlation processor: two transforms and the work buffers for one pair of lengths. */
typedef struct ORVA_XCORR ORVA_XCORR;

/** Makes a processor.
 *
 *  @param lengthX  samples of the first vector. 0 counts as silence; where both are 0 the processor executes
 *                  nothing.
 *  @param lengthY  samples of the second vector, likewise.
 *  @return         the processor, owned by the caller until ORVA_XcorrProcDestroy(). Null, without a message,
 *                  for a negative length, for one above 1073741823, and when memory for the record is out.
 *                  When memory for its buffers is out, a processor for which both execute calls give -1; if
 *                  the buffers of the spectra are among these, the error
 *                  "ORVAXcorrProcCreate: Erro na alocacao dos vetores!\n" is logged. In a child of fork()
 *                  that has lost FFTW's planner (orva/ORVAcore.h), such a processor, too, without a message.
 *
 *  Memory: two arrays of 2 L floats and two of L + 1 complex values, beside what FFTW keeps for its two plans.
 *  Threads: any, between ORVA_InitializeFFT() and ORVA_FinalizeFFT().   Real time: no (allocates, plans under
 *  a lock).
 */
ORVA_API ORVA_XCORR *ORVA_XcorrProcCreate(int32_t lengthX, int32_t lengthY);

/** The number of values in a result.
 *
 *  @param xcorr  a processor or null.
 *  @return       2L - 1; -1 for null and for a processor of two lengths of 0.
 *
 *  Threads: any.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API int32_t ORVA_XcorrVectorLength(const ORVA_XCORR *xcorr);

/** Plain cross-correlation, divided by the longer length: r(t) / L. For x equal to y, lag 0 holds the mean
 *  square.
 *
 *  @param xcorr   a processor.
 *  @param x       the first vector, `lengthX` floats, any alignment; may be null if that is 0.
 *  @param y       the second vector, `lengthY` floats, any alignment; may be null if that is 0.
 *  @param output  out: 2L - 1 floats, any alignment; may overlap the inputs, which are otherwise left as they
 *                 are.
 *  @return        2L - 1; -1, with `output` untouched, for a null processor, for one whose two lengths are 0
 *                 and for one whose buffers found no memory.
 *
 *  Threads: one at a time for a processor.   Real time: yes where FFTW takes nothing from the heap for a
 *  transform of 2L samples, as for L a power of two, see ::ORVA_FFT (no lock, log or system call).
 */
ORVA_API int32_t ORVA_XcorrProcExecute(ORVA_XCORR *xcorr, const float *x, const float *y, float *output);

/** Cross-correlation with the phase transform (PHAT): every bin of the cross-spectrum is brought to the same
 *  magnitude, so that only its phase counts. A pure delay of a broad-band signal gives a sharp peak, of 1.0 if
 *  the shift is circular, and the levels of x and y do not matter. Values lie within -1 .. 1, except for
 *  rounding.
 *
 *  Bins of magnitude zero stay zero. There is no other guard: a bin that holds nothing but rounding noise
 *  counts as much as any other, so for narrow-band signals apply a band-pass first, or use the plain form. The
 *  squared magnitude of a bin is a float, so a bin of the cross-spectrum with a magnitude below 3e-23 stays as
 *  it is, and one above 1.8e19 becomes zero.
 *
 *  @param xcorr   a processor.
 *  @param x       the first vector, as for ORVA_XcorrProcExecute().
 *  @param y       the second vector, as for ORVA_XcorrProcExecute().
 *  @param output  out: 2L - 1 floats, as for ORVA_XcorrProcExecute().
 *  @return        as for ORVA_XcorrProcExecute().
 *
 *  Threads: one at a time for a processor.   Real time: yes (as ORVA_XcorrProcExecute()).
 *  Source: C. H. Knapp, G. C. Carter, "The generalized correlation method for estimation of time delay", IEEE
 *  Trans. ASSP 24 (1976).
 */
ORVA_API int32_t ORVA_XcorrPhatProcess(ORVA_XCORR *xcorr, const float *x, const float *y, float *output);

/** Destroys a processor.
 *
 *  @param xcorr  the processor, gone after the call; null does nothing.
 *  @return       true, always.
 *
 *  Threads: any, between ORVA_InitializeFFT() and ORVA_FinalizeFFT(), while no other uses the processor.
 *  Real time: no (frees memory, takes a lock).
 */
ORVA_API bool ORVA_XcorrProcDestroy(ORVA_XCORR *xcorr);

/** How alike two vectors are, allowing for a shift: the largest absolute correlation over all lags, divided
 *  by the square root of the product of the two vectors' powers. Equal vectors give 1.0, and so do a vector
 *  and its negation.
 *
 *  For equal lengths the coefficient lies within 0 .. 1, except for rounding. For unequal lengths that value
 *  is multiplied by sqrt(lengthX * lengthY) / L: a vector of 4 samples against the same four samples and four
 *  zeros gives sqrt(4 * 8) / 8 = 0.7071.
 *
 *  @param x        the first vector, `lengthX` floats, any alignment.
 *  @param lengthX  samples.
 *  @param y        the second vector, `lengthY` floats, any alignment.
 *  @param lengthY  samples.
 *  @param lag      out: the lag of the peak, the first of equal ones, positive where x is the delayed one; or
 *                  null.
 *  @return         the coefficient; not-a-number where a length is 0 or a vector is silent, and the lag is
 *                  written even then. -1.0, with the lag untouched: for a null `x` with the error
 *                  "ORVA_XcorrCoef: Invalid vector x\n", else for a null `y` with
 *                  "ORVA_XcorrCoef: Invalid vector y\n"; without a message for a negative length, one above
 *                  1073741823, when memory is out, and in a child of fork() that has lost FFTW's planner
 *                  (orva/ORVAcore.h).
 *
 *  For occasional use: each call makes a processor and destroys it.
 *  Threads: any, between ORVA_InitializeFFT() and ORVA_FinalizeFFT().   Real time: no (allocates, plans under
 *  a lock).
 */
ORVA_API double ORVA_XcorrCoef(const float *x, int32_t lengthX, const float *y, int32_t lengthY,
                               int32_t *lag);

#endif
