/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Cubic spline through the points of a tabulated curve y(x).
 *
 *  The spline is kept in three arrays of the caller, all of the same length: the abscissae `x`, strictly
 *  ascending; the ordinates `y`; and `y2`, the second derivatives at the points, which the estimate writes and
 *  the evaluation reads. The library keeps nothing, so the same three arrays go to every evaluation.
 *
 *      float x[4] = {0, 1, 2, 4}, y[4] = {0, 1, 4, 16}, y2[4];
 *
 *      ORVASPLINE_Estimate(x, y, 4, 1e30f, 1e30f, y2);              // both ends natural
 *      float between = ORVASPLINE_Interpolate(x, y, y2, 4, 3.0f);
 *
 *  Outside x[0] .. x[n-1] the cubic of the first or last interval goes on: nothing is limited to the table.
 *  The order of the abscissae is not checked; two equal ones give an infinity or not-a-number in their
 *  interval.
 *
 *  Source: W. H. Press et al., "Numerical Recipes in C", section 3.3, for the formulation in second
 *  derivatives.
 */
#ifndef ORVA_ORVASPLINE_H
#define ORVA_ORVASPLINE_H

#include <orva/ORVAtypes.h>

/** Computes the second derivatives of the spline.
 *
 *  At each end the spline either has a given slope or is natural, with a second derivative of zero. A slope
 *  above 9.9e29 means natural; the two ends are independent. (The float nearest to 9.9e29 lies above that
 *  limit, so 9.9e29f means natural.)
 *
 *  @param x    `n` abscissae, strictly ascending.
 *  @param y    `n` ordinates.
 *  @param n    number of points, 2 or more. Fewer are refused: the message
 *              "ORVASPLINE_Estimate: Spline estimation must have 2 or more points" goes to the log, and `y2`
 *              is untouched.
 *  @param yp1  slope at the first point, or above 9.9e29.
 *  @param ypn  slope at the last point, or above 9.9e29.
 *  @param y2   out: `n` second derivatives; untouched, without a message, when memory is out. Must overlap
 *              neither `x` nor `y`.
 *
 *  Precision: differences in float, divisions of the sweeps in double, every stored value in float.
 *  Threads: any, at any time; needs no ORVA_Initialize().   Real time: no (takes 4 n bytes from the heap;
 *  O(n)).
 */
ORVA_API void ORVASPLINE_Estimate(const float *x, const float *y, int32_t n, float yp1, float ypn, float *y2);

/** Evaluates the spline at one abscissa.
 *
 *  @param x   `n` abscissae.
 *  @param y   `n` ordinates.
 *  @param y2  `n` second derivatives from ORVASPLINE_Estimate().
 *  @param n   number of points, 2 or more. With 1 the interval has no width, and the result is not-a-number
 *             or an infinity; below 1 nothing is read and the result is not-a-number.
 *  @param xq  the abscissa.
 *  @return    the ordinate there; not-a-number for a not-a-number abscissa.
 *
 *  Threads: any, at any time; needs no ORVA_Initialize().   Real time: yes (no heap, lock, log or system
 *  call; O(log n)).
 */
ORVA_API float ORVASPLINE_Interpolate(const float *x, const float *y, const float *y2, int32_t n, float xq);

#endif
