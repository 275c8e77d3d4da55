/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Measures of one frame of samples, and a fixed high-pass filter against a constant offset.
 *
 *  A frame is an array of floats, any alignment; lengths count samples. No pointer is checked, nothing is
 *  kept between calls, and none of the three needs ORVA_Initialize().
 *
 *      ORVA_RemoveDC(frame, frame, 480);                      // in place
 *      float level = ORVA_CalcEnergy(frame, 480);             // dB
 *      float rate = ORVA_CalcZeroCrossRate(frame, 480);       // crossings per sample
 */
#ifndef ORVA_ORVAMISC_H
#define ORVA_ORVAMISC_H

#include <orva/ORVAtypes.h>

/** The variance of a frame in decibels, 10 log10(v / 0.32768) with v the mean square less the squared mean.
 *
 *  A constant or silent frame gives 0.0 and not a large negative number. That is also the value of a frame
 *  whose variance is 0.32768; quiet frames have negative values.
 *
 *  @param input   `length` samples.
 *  @param length  samples; 0 or less reads nothing.
 *  @return        decibels; 0.0 where the variance is not above zero, for a length of 0 or less, and for a
 *                 frame that holds not-a-number or an infinity.
 *
 *  Precision: sums in float, in index order; the logarithm in double.
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call; O(length)).
 */
ORVA_API float ORVA_CalcEnergy(const float *input, int32_t length);

/** The number of sign changes between neighbouring samples, divided by the length (not by the length less
 *  one, so that the rate never quite reaches 1).
 *
 *  A change counts when the float product of the two samples is below zero. So a change from or to a sample
 *  of exactly zero does not count, nor one between two samples so small that their product is zero.
 *
 *  @param input   `length` samples.
 *  @param length  samples.
 *  @return        crossings per sample; 0.0 for a length of 1; not-a-number for a length of 0 and -0.0 for a
 *                 negative one, which read nothing.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call; O(length)).
 */
ORVA_API float ORVA_CalcZeroCrossRate(const float *input, int32_t length);

/** Runs a fixed high-pass filter of second order over a buffer:
 *
 *      y[n] = a1 y[n-1] + a2 y[n-2] + b0 x[n] + b1 x[n-1] + b0 x[n-2]
 *      a1 = 1.9059464931488037   a2 = -0.9114024043083191
 *      b0 = 0.9272743463516235   b1 = -1.8544940948486328
 *
 *  Each call starts from silence: two calls on the halves of a buffer differ from one on the whole. The gain
 *  is -3 dB at about 0.011 of the sampling rate. At zero frequency it is 0.010007 and not 0, because the
 *  coefficients are single-precision numbers, so an offset is reduced to about one hundredth.
 *
 *  @param input   `length` samples.
 *  @param output  out: `length` samples; may be `input` itself, but must not overlap it otherwise.
 *  @param length  samples; 0 or less does nothing.
 *
 *  Precision: the recursion is double throughout; each output is rounded once, at the store.
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call; O(length)).
 */
ORVA_API void ORVA_RemoveDC(const float *input, float *output, int32_t length);

#endif
