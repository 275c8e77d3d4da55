/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  The export macro that every header of libkett uses.
 */
#ifndef KETT_KTTYPES_H
#define KETT_KTTYPES_H

#include <stdbool.h>
#include <stdint.h>

/** Makes a name visible outside the library; the one place that depends on the compiler and the system. On Windows a list
 *  tells the linker which names these are. */
#if defined(__GNUC__) && !defined(_WIN32)
#define KT_VISIBLE __attribute__((visibility("default")))
#else
#define KT_VISIBLE
#endif

/** Marks what the library exports: C linkage, visible from outside. */
#ifdef __cplusplus
#define KT_API extern "C" KT_VISIBLE
#else
#define KT_API KT_VISIBLE
#endif

#endif
