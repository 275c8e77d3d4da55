/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  A recursive filter over one block of a stream, in double.
 */
#ifndef KETT_KTFILTER_H
#define KETT_KTFILTER_H

#include <kett/KTtypes.h>

/** Filters a block in transposed direct form II. With n coefficients in each array, for each sample x:
 *
 *      y    = b[0] x + s[0]
 *      s[k] = (b[k+1] x + s[k+1]) - a[k+1] y     for k = 0 .. n-2
 *
 *  A stream cut into blocks anywhere gives the same bits as one long block.
 *
 *  One polynomial of high order is ill-conditioned where poles crowd, as in narrow filters. The error of the
 *  elliptic low-passes that liborva resamples with, on noise: up to 1e-11 of the peak at orders 6 to 8, 1e-9
 *  at order 9, and 1e-4 at order 10, whose narrowest passband ends at 0.037 of the rate.
 *
 *  @param denominator       a: `coefficientCount` doubles, the first equal to 1.0 and not read.
 *  @param numerator         b: `coefficientCount` doubles.
 *  @param coefficientCount  the filter's order plus one; 0 or less writes zeros to `output`.
 *  @param state1            s: `coefficientCount` + 1 doubles, zeros before the first block, kept from block
 *                           to block.
 *  @param state2            as many doubles, left as they are; may be null.
 *  @param input             `sampleCount` floats.
 *  @param output            out: `sampleCount` doubles; must not overlap `input`.
 *  @param sampleCount       samples; 0 or less changes nothing.
 *
 *  Threads: any; one state belongs to one thread at a time.
 *  Real time: yes (no heap, lock, log or system call).
 *  Source: A. V. Oppenheim, R. W. Schafer, "Discrete-Time Signal Processing", section on transposed forms.
 */
KT_API void FilterBlockFloat(const double *denominator, const double *numerator, int32_t coefficientCount,
                             double *state1, double *state2, const float *input, double *output,
                             int32_t sampleCount);

#endif
