/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Straight lines between the points of a tabulated curve y(x).
 *
 *      const float hertz[3] = {0, 1000, 8000}, gain[3] = {0, 1, -4};
 *
 *      float at4k = ORVAINTERPOLATE_Linear(hertz, gain, 3, 4000.0f);
 *
 *  Outside x[0] .. x[n-1] the first or last line goes on: nothing is limited to the table. The order of the
 *  abscissae is not checked; two equal ones give an infinity or not-a-number in their interval.
 */
#ifndef ORVA_ORVAINTERPOLATE_H
#define ORVA_ORVAINTERPOLATE_H

#include <orva/ORVAtypes.h>

/** Evaluates the straight-line interpolant at one abscissa, in float.
 *
 *  @param x   `n` abscissae, strictly ascending.
 *  @param y   `n` ordinates.
 *  @param n   number of points, 2 or more. With 1 the interval has no width, and the result is not-a-number
 *             or an infinity; below 1 nothing is read and the result is not-a-number.
 *  @param xq  the abscissa.
 *  @return    the ordinate there; not-a-number for a not-a-number abscissa.
 *
 *  Threads: any, at any time; needs no ORVA_Initialize().   Real time: yes (no heap, lock, log or system
 *  call; O(log n)).
 */
ORVA_API float ORVAINTERPOLATE_Linear(const float *x, const float *y, int32_t n, float xq);

#endif
