/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Threads that can be joined.
 */
#ifndef KETT_KTTHREAD_H
#define KETT_KTTHREAD_H

#include <kett/KTtypes.h>

/** A started thread. Its record lives until libkett is unloaded, so that it can be joined at any later time,
 *  by several threads and again. */
typedef struct KT_THREAD KT_THREAD;

/** The body of a thread.
 *
 *  @param argument  the pointer given to KTTHREAD_AddThread().
 *  @return          a number that nobody reads.
 */
typedef int32_t (*KTTHREAD_FUNCTION)(void *argument);

/** Starts a function at once on a new thread, which blocks all signals.
 *
 *  @param function  the body; null starts nothing and gives null.
 *  @param argument  its argument.
 *  @param flags     not used.
 *  @return          the thread, or null when it could not be started.
 *
 *  Threads: any.   Real time: no (allocates, system calls).
 */
KT_API KT_THREAD *KTTHREAD_AddThread(KTTHREAD_FUNCTION function, void *argument, int32_t flags);

/** Blocks until the thread has ended. Several threads may wait for one, and a thread that has ended long
 *  since, or has been joined before, is joined at once.
 *
 *  A child of fork() has none of its parent's threads, and so never waits for one of them.
 *
 *  @param thread  the thread; null does nothing.
 *  @param flags   not used.
 *  @return        1 when the thread has ended. 0, at once, for null, for a thread that would wait for itself,
 *                 and in a child of fork() for a thread of its parent that had not ended before the fork.
 *
 *  Threads: any.   Real time: no (waits).
 */
KT_API int32_t KTTHREAD_JoinThreadEx(KT_THREAD *thread, int32_t flags);

#endif
