/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Kernels over vectors of floats, any alignment.
 *
 *  A length of zero or below is an empty vector. All are pure functions of their arguments: any thread, at
 *  any time, real time: yes (no heap, lock, log or system call). The bits of a result do not depend on
 *  alignment or processor.
 */
#ifndef KETT_KTVECTOR_H
#define KETT_KTVECTOR_H

#include <kett/KTtypes.h>

/** Multiplies each element by a factor, in float, in place.
 *
 *  @param vector  `length` floats.
 *  @param length  number of elements.
 *  @param factor  the factor.
 */
KT_API void FVectorMulScalar(float *vector, int32_t length, float factor);

/** The sum of the squares: each element widened to double, squared and added in double, in index order.
 *
 *  @param vector  `length` floats.
 *  @param length  number of elements.
 *  @return        the sum, 0.0 for an empty vector.
 */
KT_API double FVectorSumOfSquares(const float *vector, int32_t length);

/** The largest absolute value; not-a-number never counts.
 *
 *  @param vector  `length` floats.
 *  @param length  number of elements.
 *  @return        the value, 0.0f for an empty vector.
 */
KT_API float FVectorAbsMax(const float *vector, int32_t length);

/** The place of the largest absolute value, the first of equal ones; not-a-number never counts.
 *
 *  @param vector   `length` floats.
 *  @param length   number of elements.
 *  @param maximum  out: the largest absolute value, 0.0f for an empty vector; may be null.
 *  @return         the index, 0 for an empty vector.
 */
KT_API int32_t FVectorArgAbsMax(const float *vector, int32_t length, float *maximum);

#endif
