/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  The version of the library: four numbers, called major, minor, release and build, and one line of text that also names
 *  the day of compilation.
 *
 *      int32_t major, minor;
 *      ORVAVERSION_Number(&major, &minor, NULL, NULL);
 *      if (major != 3 || minor < 7)
 *          puts("needs liborva 3.7 or a later 3");
 *      else
 *          puts(ORVAVERSION_String());
 */
#ifndef ORVA_ORVAVERSION_H
#define ORVA_ORVAVERSION_H

#include <orva/ORVAtypes.h>

/** The version as one line, such as "liborva version 3.7.18.0 (built in Jun  3 2020)": the month in three letters, the day
 *  padded to two places by a blank, the year.
 *
 *  @return the text: the same pointer at each call, valid until the library is unloaded, never freed by the caller.
 *
 *  Threads: any, at any time (each call writes the same bytes to the text).   Real time: no (formats text).
 */
ORVA_API const char *ORVAVERSION_String(void);

/** The version as four numbers: 3, 7, 18, 0.
 *
 *  @param major    out: first number; null skips it, as with the others.
 *  @param minor    out: second number.
 *  @param release  out: third number.
 *  @param build    out: fourth number.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call).
 */
ORVA_API void ORVAVERSION_Number(int32_t *major, int32_t *minor, int32_t *release, int32_t *build);

#endif
