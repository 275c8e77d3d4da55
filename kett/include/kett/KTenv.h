/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Environment values: those that the host publishes inside the process, else those of the C environment.
 */
#ifndef KETT_KTENV_H
#define KETT_KTENV_H

#include <kett/KTtypes.h>

/** Publishes a value inside the process. The C environment is not touched.
 *
 *  @param name   the variable's name, not null and not empty.
 *  @param value  its value, copied; null takes a published value away.
 *  @return       true, or false when `name` is null or empty or memory is out; nothing has then changed.
 *
 *  Threads: any, at any time.   Real time: no (allocates, takes a lock).
 */
KT_API bool KTENV_SetEnvValue(const char *name, const char *value);

/** The value of a variable: the published one if there is one, else what `getenv` gives.
 *
 *  On Windows the value is the system's (`GetEnvironmentVariableW`) in UTF-8, and stays valid until libkett is
 *  unloaded.
 *
 *  @param name  the variable's name; null or an empty one finds nothing.
 *  @return      the value, or null when the variable is not set. Never freed by the caller: a published text
 *               that was asked for stays valid until libkett is unloaded (others are freed when they are
 *               replaced), one from the C environment until the variable is changed there. In a program with
 *               raised rights, such as a set-user-ID one, the C environment has nothing to give.
 *
 *  Threads: any, at any time, but not while another changes the C environment (`setenv`, `putenv`), as with
 *  `getenv`.   Real time: no (takes a lock).
 */
KT_API const char *KTENV_GetEnvValue(const char *name);

#endif
