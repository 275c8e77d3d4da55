/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Hertz to the mel and Bark scales and back, all in double.
 *
 *  The two mel functions are each other's inverse. The two Bark functions are not: ORVAUTIL_Freq2Bark() is a
 *  formula, while ORVAUTIL_Bark2Freq() follows straight lines between the 25 band edges. From hertz to Bark
 *  and back, 500 Hz become 424 and 8000 Hz become 7413.
 *
 *      double mels = ORVAUTIL_Freq2Mels(1000.0);            // 1000.0
 *      double hertz = ORVAUTIL_Bark2Freq(9.0);              // 1000
 *
 *  All four are pure functions: any thread, at any time, without ORVA_Initialize(). Real time: yes (no heap,
 *  lock, log or system call).
 */
#ifndef ORVA_ORVAUTIL_H
#define ORVA_ORVAUTIL_H

#include <orva/ORVAtypes.h>

/** Hertz to mels: 1127.01048 ln(f / 700 + 1).
 *
 *  @param frequency  hertz.
 *  @return           mels; minus infinity at -700 Hz and not-a-number below.
 *
 *  Real time: yes.   Source: D. O'Shaughnessy, "Speech Communication: Human and Machine" (1987).
 */
ORVA_API double ORVAUTIL_Freq2Mels(double frequency);

/** Mels to hertz: 700 (exp(m / 1127.01048) - 1).
 *
 *  @param mels  mels.
 *  @return      hertz.
 *
 *  Real time: yes.   Source: as ORVAUTIL_Freq2Mels().
 */
ORVA_API double ORVAUTIL_Mels2Freq(double mels);

/** Hertz to Bark: 13 atan(0.00076 f) + 3.5 atan((f / 7500)^2).
 *
 *  @param frequency  hertz; below 1 counts as 1, which gives 0.009880060319993549.
 *  @return           Bark.
 *
 *  Real time: yes.   Source: E. Zwicker, E. Terhardt, "Analytical expressions for critical-band rate and
 *  critical bandwidth as a function of frequency", J. Acoust. Soc. Am. 68 (1980).
 */
ORVA_API double ORVAUTIL_Freq2Bark(double frequency);

/** Bark to hertz, along straight lines between the band edges 0, 60, 150, 250, 350, 450, 570, 700, 840, 1000,
 *  1170, 1370, 1600, 1850, 2150, 2500, 2900, 3400, 4000, 4800, 5800, 7000, 8500, 10500 and 13500 Hz at 0 to 24
 *  Bark. Below 0 the first line goes on and above 24 the last: -1 gives -60, and 25 gives 16500.
 *
 *  @param bark  Bark, any value.
 *  @return      hertz; not-a-number for not-a-number.
 *
 *  Real time: yes.   Source: as ORVAUTIL_Freq2Bark().
 */
ORVA_API double ORVAUTIL_Bark2Freq(double bark);

#endif
