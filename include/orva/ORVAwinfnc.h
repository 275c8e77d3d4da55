/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Analysis windows: named shapes, filled into a buffer of the host, and two measures of their gain.
 *
 *  A window is an array of N floats, N being its length in samples; w[i] is the factor of sample i. Each shape
 *  has a code and a name; names are compared whole and without regard to the case of A-Z:
 *
 *      code  name                D      w[i], with p = 2 pi i / D
 *      0     Rectangular                1
 *      1     Triangular                 i / (floor(N / 2) - 1) up to the middle, then mirrored
 *      2     Half-Triangular            i / (N - 1)
 *      3     Hanning             N - 1  (1 - cos p) 0.5
 *      4     Hanning-Periodic    N      0.5 - 0.5 cos p
 *      5     Hamming             N - 1  0.54 - 0.46 cos p
 *      6     Blackman            N      0.42 - 0.5 cos p + 0.08 cos 2p
 *      7     Blackman-Harris     N - 1  0.35875 - 0.48829 cos p + 0.14128 cos 2p - 0.01168 cos 3p
 *      8     Blackman-Nuttall    N - 1  0.355768 - 0.487396 cos p + 0.144232 cos 2p - 0.012604 cos 3p
 *      9     Nuttal              N - 1  0.3635819 - 0.4891775 cos p + 0.1365995 cos 2p - 0.0106411 cos 3p
 *      10    Flat-Top            N - 1  1 - 1.93 cos p + 1.29 cos 2p - 0.388 cos 3p + 0.028 cos 4p
 *
 *  Sums of cosines are computed up to the middle and mirrored, except Hanning-Periodic, so that its last
 *  sample is not zero. A sum of cosines with D = N - 1 reaches its peak at odd lengths, where a sample stands
 *  in the middle, and comes close to it at even ones. The peak is 1, except that of Flat-Top. All of the
 *  following is deliberate:
 *
 *  - Triangular overshoots at odd lengths: N = 5 gives 0, 1, 2, 1, 0. N = 1 gives -0, N = 2 gives twice
 *    not-a-number, N = 3 the same with an infinity between them.
 *  - Half-Triangular of N = 1 is not-a-number.
 *  - Blackman divides by N and is mirrored nevertheless, so it stays below 1 at odd lengths too: by
 *    0.41 (pi / N)^2 at odd lengths, and by four times that at even ones.
 *  - Blackman-Nuttall and Nuttal carry the coefficients shown, and Nuttal is written with one l.
 *  - Flat-Top peaks at 4.636.
 *  - A mirrored sum of cosines of N = 1 or 2 holds nothing but its end value, which for Hanning is 0.
 *    Hanning-Periodic of N = 1 is 0 as well.
 *  - Where the terms cancel at the ends, a rounding residue stays: -1.4e-17 for Blackman, -2.4e-17 for
 *    Blackman-Nuttall, 8.7e-17 for Flat-Top.
 *
 *  Precision: computed in double with a phase accumulated sample by sample, rounded to float at the store.
 *
 *  Source: F. J. Harris, "On the use of windows for harmonic analysis with the discrete Fourier transform",
 *  Proc. IEEE 66 (1978); A. H. Nuttall, "Some windows with very good sidelobe behavior", IEEE Trans. ASSP
 *  29 (1981).
 *
 *      float window[1024];
 *      int32_t type = ORVA_GetWindowTypeFromStringConfig(config, "window", 3);  // "window=hamming" gives 5
 *      ORVA_CreateWindow(type, window, 1024);
 *      double gain = ORVA_GetWindowNormFactor(window, 1024);
 *
 *      ORVA_ApplyWindow(window, frame, 1024);                                   // frame by frame
 *
 *  Every operation is a pure function of its arguments and needs no start of the library.
 */
#ifndef ORVA_ORVAWINFNC_H
#define ORVA_ORVAWINFNC_H

#include <orva/ORVAtypes.h>

/** Fills a buffer with a window.
 *
 *  @param type    one of the codes of the table above.
 *  @param window  out: `length` floats, any alignment; untouched on refusal.
 *  @param length  samples; 0 writes nothing.
 *  @return        true, or false when `window` is null or `type` is not in the table.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call); each sample takes up to
 *  four cosines, so call it before the stream starts.
 */
ORVA_API bool ORVA_CreateWindow(int32_t type, float *window, uint32_t length);

/** Multiplies data by a window in place: data[i] = data[i] * window[i], in float.
 *
 *  @param window  `length` floats, any alignment. Not checked: must not be null when `length` is above 0.
 *  @param data    in and out: `length` floats, any alignment. Not checked either.
 *  @param length  samples; zero or below does nothing.
 *  @return        true.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API bool ORVA_ApplyWindow(const float *window, float *data, int32_t length);

/** The code that goes with a name.
 *
 *  @param name  a name of the table above, in any case of letters.
 *  @return      its code; 0, which is also the code of Rectangular, for any other name and for null.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API int32_t ORVA_GetWindowType(const char *name);

/** The name that goes with a code.
 *
 *  @param type  one of the codes of the table above.
 *  @return      the name as written there, valid until the library is unloaded, never freed by the caller;
 *               null for any other code.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API const char *ORVA_GetWindowName(int32_t type);

/** The mean of a window, its gain for a sine in the middle of a bin: the samples summed in double in index
 *  order, divided by their number.
 *
 *  @param window  `length` floats, any alignment.
 *  @param length  samples. For 0 or less the sum is 0.0 and is still divided by `length`: 0 gives
 *                 not-a-number, a negative length -0.0.
 *  @return        the mean; 0.0 when `window` is null, whatever `length` is.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API double ORVA_GetWindowNormFactor(const float *window, int32_t length);

/** The mean of the product of two windows, the gain of applying both: each product in float, summed in
 *  double in index order, divided by their number.
 *
 *  @param first   `length` floats, any alignment.
 *  @param second  `length` floats, any alignment; may be `first`.
 *  @param length  samples; zero and below as with ORVA_GetWindowNormFactor().
 *  @return        the mean; 0.0 when one of the two is null, whatever `length` is.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API double ORVA_GetTwoWindowNormFactor(const float *first, const float *second, int32_t length);

/** The code of the window that a configuration string names.
 *
 *  @param config       the configuration string (its grammar: kett/KTstring.h), such as
 *                      "window=Blackman-Harris"; null counts as an empty string.
 *  @param key          the key whose value is the name; null counts as a key that is absent.
 *  @param defaultType  the result when the key is absent; it need not be a code of the table.
 *  @return             the code of the name; 0, and not `defaultType`, when the key holds a name that is not
 *                      in the table.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API int32_t ORVA_GetWindowTypeFromStringConfig(const char *config, const char *key, int32_t defaultType);

#endif
