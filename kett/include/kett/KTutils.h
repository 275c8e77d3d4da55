/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Sleeping, and conversion between float and 16-bit samples.
 *
 *  Full scale, 1.0, is 32768, so 16-bit to float to 16-bit is the identity.
 */
#ifndef KETT_KTUTILS_H
#define KETT_KTUTILS_H

#include <kett/KTtypes.h>

/** Sleeps at least the given time, whatever signals arrive.
 *
 *  @param milliseconds  0 or less returns at once.
 *
 *  Threads: any.   Real time: no (waits).
 */
KT_API void KTUTILS_sleep_msec(int32_t milliseconds);

/** Converts float samples to 16 bits: x * 32768, rounded to nearest, ties to even, limited to the range
 *  of 16 bits. Not-a-number gives 0.
 *
 *  @param input   `count` floats, any alignment.
 *  @param output  out: `count` samples; must not overlap `input`.
 *  @param count   samples; 0 or less does nothing.
 *
 *  Threads: any.   Real time: yes (no heap, lock, log or system call).
 */
KT_API void KTUTILS_ConvertIEEEFloatToWord16(const float *input, int16_t *output, int32_t count);

/** Converts 16-bit samples to float: x / 32768, exact.
 *
 *  @param input   `count` samples.
 *  @param output  out: `count` floats, any alignment; must not overlap `input`.
 *  @param count   samples; 0 or less does nothing.
 *
 *  Threads: any.   Real time: yes (no heap, lock, log or system call).
 */
KT_API void KTUTILS_ConvertWord16ToIEEEFloat(const int16_t *input, float *output, int32_t count);

#endif
