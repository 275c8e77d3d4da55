/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Mutexes, not recursive. They are handed on in the order in which they were asked for: a thread that releases one and asks
 *  for it again at once gets it after all that wait already.
 */
#ifndef KETT_KTMUTEX_H
#define KETT_KTMUTEX_H

#include <kett/KTtypes.h>

/** A mutex. */
typedef struct KT_MUTEX KT_MUTEX;

/** Creates an unlocked mutex.
 *
 *  @return the mutex, or null when memory is out.
 *
 *  Threads: any.   Real time: no (allocates).
 */
KT_API KT_MUTEX *MutexInit(void);

/** Blocks until the mutex is held.
 *
 *  @param mutex  the mutex; null does nothing.
 *
 *  Threads: any that does not hold it already.   Real time: no (waits).
 */
KT_API void MutexLock(KT_MUTEX *mutex);

/** Releases the mutex.
 *
 *  @param mutex  a mutex that the calling thread holds; null does nothing.
 *
 *  Threads: the one that holds it.   Real time: no (may wake a thread).
 */
KT_API void MutexUnlock(KT_MUTEX *mutex);

/** Destroys a mutex that nobody holds or waits for.
 *
 *  @param mutex  the mutex, no longer valid after the call; null does nothing.
 *
 *  Threads: any, while no other uses it.   Real time: no (frees memory).
 */
KT_API void MutexDestroy(KT_MUTEX *mutex);

#endif
