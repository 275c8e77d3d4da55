/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  The life cycle of the library.
 *
 *  The library counts its uses. Loading it counts as one use and brings it up; unloading takes that use away and, when it
 *  was the last, takes the library down, which may write the wisdom store. A host therefore needs neither of these calls. It
 *  may make them in pairs, from one thread at a time:
 *
 *      ORVA_Initialize();                        // a second use: loading has counted the first
 *      ORVA_FFT *fft = ORVA_FFTProcCreate(1024);
 *      ...
 *      ORVA_FFTProcDestroy(fft);
 *      ORVA_Finalize();                          // back to the first use
 *
 *  After one call of ORVA_Finalize() more than of ORVA_Initialize() the library is down while it stays loaded, and
 *  unloading then does nothing more. A later ORVA_Initialize() brings the library up again, with the limits that
 *  ORVA_InitializeFFT() describes: the wisdom store is not read again, and a preparation of plans ends after its first
 *  transform length.
 *
 *  A child of fork() has the library as its parent had it, with copies of all handles. It may call everything, but must
 *  leave alone each handle that another thread was using at the moment of the fork. It has no preparation of plans, and may
 *  start one. One thing it may have lost: if another thread was then at FFTW's planner, the child and its own children do
 *  without the planner as long as they live. Then
 *
 *      ORVA_FFTProcCreate(), ORVA_IFFTProcCreate(), ORVA_FMCLTProcCreate()     give null,
 *      ORVA_XcorrProcCreate()              gives a processor for which both execute calls give -1,
 *      ORVA_XcorrCoef()                    gives -1.0,
 *      ORVA_OptimizeFFT()                  starts nothing and returns at once,
 *      the calls that destroy              free everything but the plans,
 *      the wisdom store                    is neither read nor written,
 *
 *  and all else works, the execution of processors made before the fork included. In no case does a child hang or crash
 *  when it takes the library down, be it by ORVA_Finalize(), by unloading or at the end of the process; it saves the wisdom
 *  only if it has the planner. At the planner are the calls that create or destroy a processor for transforms, correlation
 *  or the lapped transform, ORVA_XcorrCoef(), a preparation of plans while it plans or saves, and the start and the stop
 *  of the library. A child without the planner must not unload the library and load it again to plan, since FFTW stays as
 *  it is. vfork() and posix_spawn() change nothing here.
 *
 *  On Windows unloading waits for no thread: a preparation of plans keeps the library loaded until it has ended with all its
 *  lengths, and the library then goes down and saves. At the end of the process all other threads are gone already, nothing
 *  is waited for, and the wisdom is saved unless one of them was at the planner; then the store stays as it is. What
 *  ORVA_Finalize() says holds there for the host's own call, which may wait.
 *
 *  None of this reports a failure, and no failure prevents the library from being loaded. Only transforms, correlation and
 *  the lapped transform need the library to be up; everything else works whatever the count is.
 */
#ifndef ORVA_ORVACORE_H
#define ORVA_ORVACORE_H

#include <orva/ORVAtypes.h>

/** Counts one use of the library; the first brings it up: it registers its version with libkett, sets the default of the
 *  setting "orva.fftw.prepare_plans" to off, starts libkett and then the FFT engine (ORVA_InitializeFFT()).
 *
 *  Threads: one at a time, ORVA_Finalize() included.   Real time: no (allocates, locks, may read the wisdom store).
 */
ORVA_API void ORVA_Initialize(void);

/** Takes one use away; the last takes the library down: the FFT engine first (ORVA_FinalizeFFT()), then libkett. When no
 *  use is left, the call only lowers the count below zero; the next ORVA_Initialize() brings the library up again and sets
 *  the count to one, however far below zero it was.
 *
 *  A preparation of plans that is under way first finishes its current transform length, and the call waits for that. So do
 *  the end of the process and the unloading of the library. A child of fork() waits for no preparation of its parent.
 *
 *  Threads: one at a time, ORVA_Initialize() included.   Real time: no (waits, may write the wisdom store).
 */
ORVA_API void ORVA_Finalize(void);

#endif
