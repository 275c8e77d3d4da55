/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  A register of the modules present in the process, with their versions.
 */
#ifndef KETT_KTVERSION_H
#define KETT_KTVERSION_H

#include <kett/KTtypes.h>

/** Records that the module `name` is present in this version; registering a name again replaces its numbers.
 *
 *  @param name     the module's name, not null; the text is copied.
 *  @param major    first number of the version.
 *  @param minor    second number.
 *  @param release  third number.
 *  @param build    fourth number.
 *  @return         true, or false when `name` is null or memory is out; the register is then as it was.
 *
 *  Threads: any, at any time.   Real time: no (allocates, takes a lock).
 */
KT_API bool KTVERSION_Register(const char *name, int32_t major, int32_t minor, int32_t release,
                               int32_t build);

/** Reads back what KTVERSION_Register() recorded.
 *
 *  @param name     the module's name; null finds nothing.
 *  @param major    out: first number; may be null, as may the others.
 *  @param minor    out: second number.
 *  @param release  out: third number.
 *  @param build    out: fourth number.
 *  @return         true, or false when no such module is registered; nothing is then written.
 *
 *  Threads: any, at any time.   Real time: no (takes a lock).
 */
KT_API bool KTVERSION_Find(const char *name, int32_t *major, int32_t *minor, int32_t *release,
                           int32_t *build);

#endif
