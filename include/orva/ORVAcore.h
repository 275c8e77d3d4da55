/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  The life cycle of the library.
 *
 *  The library counts its uses. Loading it counts as one use and brings it up; unloading takes that use away and, when it
 *  was the last, takes the library down, which may write the wisdom store. A host therefore needs neither of these calls. It
 *  may make them in pairs, from one thread at a time:
 *
 *      ORVA_Initialize();                        // one use more: the library was up already
 *      ORVA_FFT *fft = ORVA_FFTProcCreate(1024);
 *      ...
 *      ORVA_FFTProcDestroy(fft);
 *      ORVA_Finalize();                          // back to the use that loading has counted
 *
 *  An ORVA_Finalize() too many takes the library down while it stays loaded; unloading then does nothing more. Brought up
 *  again after that, the FFT engine goes on as ORVA_InitializeFFT() tells: a preparation of plans ends after its first
 *  transform length.
 *
 *  None of this reports a failure, and no failure keeps the library from being loaded. All but transforms, correlation and
 *  the lapped transform works whatever the count says.
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

/** Takes one use away; the last takes the library down: the FFT engine first (ORVA_FinalizeFFT()), then libkett. A call
 *  without a use to take away only moves the count below zero; the next ORVA_Initialize() brings the library up again,
 *  and the count is one, however far below zero it was.
 *
 *  May wait for a preparation of plans that is under way, until it has ended the transform length that it is at. So may
 *  the end of the process and the unloading of the library.
 *
 *  Threads: one at a time, ORVA_Initialize() included.   Real time: no (waits, may write the wisdom store).
 */
ORVA_API void ORVA_Finalize(void);

#endif
