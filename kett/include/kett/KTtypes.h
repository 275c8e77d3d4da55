/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  The export macro that every header of libkett uses.
 */
#ifndef KETT_KTTYPES_H
#define KETT_KTTYPES_H

#include <stdbool.h>
#include <stdint.h>

/** Marks what the library exports: C linkage, visible from outside. */
#ifdef __cplusplus
#define KT_API extern "C" __attribute__((visibility("default")))
#else
#define KT_API __attribute__((visibility("default")))
#endif

#endif
