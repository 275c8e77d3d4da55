/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  The use count of libkett.
 *
 *  Every operation works before the first KTCORE_Initialize(), between the two calls and after the last
 *  KTCORE_Finalize(); settings, published environment values and the log sink survive both.
 */
#ifndef KETT_KTCORE_H
#define KETT_KTCORE_H

#include <kett/KTtypes.h>

/** Counts one use of the library.
 *
 *  @return the number of uses after the call.
 *
 *  Threads: any, at any time.   Real time: yes (one atomic addition).
 */
KT_API int32_t KTCORE_Initialize(void);

/** Takes one use away.
 *
 *  @return the number of uses after the call; without one to take away it stays 0.
 *
 *  Threads: any, at any time.   Real time: yes (no heap, lock, log or system call).
 */
KT_API int32_t KTCORE_Finalize(void);

#endif
