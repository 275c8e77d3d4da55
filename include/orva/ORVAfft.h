/** @file
 *  Fast Fourier transforms of real data, on FFTW in single precision: the engine around FFTW's planner, and
 * processors.
 *
 *  FFTW's planner serves one thread at a time, so the engine keeps one lock around every use that the library
 * makes of it. Transforms are executed without any lock. A host that plans transforms with FFTW itself, in a
 * process where this library also does, does so while no other thread is in a create or destroy call of this
 * library, saves or prepares.
 *
 *  What FFTW has learned about planning, its wisdom, is kept between runs in one file, the store:
 * "ruko.optimization" in the folder that the environment value KT_DATA_PATH names. The store holds the text
 * of fftwf_export_wisdom_to_string() and nothing else. It is read once in a process, as soon as the folder is
 * known at the start of the engine, at the creation of a processor or in a preparation; it is written at the
 * end of a preparation and when the engine goes down, if it differs from FFTW's wisdom in length or in any
 * byte. Settings, asked anew at each use:
 *
 *      orva.fftw.use_wisdom=[1]          off: the store is neither read nor written
 *      orva.fftw.prepare_plans=[0]       on: ORVA_OptimizeFFT() prepares plans
 *      orva.fftw.max_plan_len=[4096]     the longest transform that it prepares
 *
 *  Loading the library starts the engine and unloading stops it, so a host need not call it at all. One that
 * wants the store filled while it starts up:
 *
 *      KTENV_SetEnvValue("KT_DATA_PATH", "/var/lib/host");
 *      KTSETTINGS_SetEx(NULL, "orva.fftw.prepare_plans=%d", 1);
 *      ORVA_OptimizeFFT(false);                              // returns at once; plans are prepared beside
 * the host
 *
 *      ORVA_FFT *fft = ORVA_FFTProcCreate(1024);
 *      int32_t bins = ORVA_FFTProcExecute(fft, input, spectrum);   // 513
 *      ORVA_FFTProcDestroy(fft);
 *
 *  Not promised: equal bits between two machines or two wisdoms, since FFTW picks its code by both.
 */
#ifndef ORVA_ORVAFFT_H
#define ORVA_ORVAFFT_H

#include <orva/ORVAtypes.h>

/** Starts the engine: makes the planner's lock and reads the store, if the folder is known and wisdom is in
 * use. A store that is missing, cannot be read or does not hold wisdom is passed over without a message.
 * While the engine runs, a further call does nothing.
 *
 *  @return true.
 *
 *  Called by the start of the library. After ORVA_FinalizeFFT() it starts the engine again, with two things
 * left as they were: the store is not read a second time, and a preparation ends behind its first transform
 * length.
 *
 *  Threads: one, while no other call of the library is under way.   Real time: no (allocates, locks, reads a
 * file).
 */
ORVA_API bool ORVA_InitializeFFT(void);

/** Stops the engine: waits for a preparation that is under way, writes the store if it was read before (or
 * found missing) and differs from FFTW's wisdom, and destroys the planner's lock.
 *
 *  A preparation ends behind the transform length that it is at, and saves the store; one that still waits
 * for the folder waits to its end, 300 ms at most. A store that cannot be written is left as it is, without a
 * message.
 *
 *  @return true.
 *
 *  Called by the end of the library. Between this call and the next ORVA_InitializeFFT() nothing that plans
 * may be called: no second ORVA_FinalizeFFT(), no ORVA_OptimizeFFT(), no create or destroy call of a
 * processor on transforms. All of them would use the destroyed lock. Processors that are still alive are not
 * destroyed; they may go on executing. In a process in which the engine never ran, the call is harmless, and
 * so is every other: they go on without a lock.
 *
 *  Threads: one, while no other call of the library is under way.   Real time: no (waits, locks, may write a
 * file).
 */
ORVA_API bool ORVA_FinalizeFFT(void);

/** Prepares plans in the background, so that the store fills up: a thread plans, forward and inverse, each of
 * the lengths 16, 32, 64 ... 16384 that is not above "orva.fftw.max_plan_len", throws the plans away and
 * saves the wisdom that FFTW has gathered. With "orva.fftw.prepare_plans" off, the default, the thread ends
 * without doing so.
 *
 *  The thread first waits for 50 ms, and up to five times as long again while KT_DATA_PATH is not set; if it
 * never is, it ends with the warning "__InitializeFFTWPlans: KT_DATA_PATH not set!".
 *
 *  @param wait  true: return when the preparation has ended, be it one that an earlier call has started; a
 * later call then starts a new one. False: return at once. Only a call that waits collects a preparation:
 * after a call that did not wait, further ones that do not wait start nothing, however long ago the
 * preparation ended.
 *  @return      true, also when the thread could not be started; a later call then tries again.
 *
 *  To be called while the engine runs. Before the first ORVA_InitializeFFT() it works without a lock, and
 * only while no other thread is in a call of the library; that start forgets a preparation begun before it.
 * After ORVA_FinalizeFFT() it must not be called.
 *
 *  Threads: any, several may wait.   Real time: no (locks, starts a thread, may wait).
 */
ORVA_API bool ORVA_OptimizeFFT(bool wait);

/* Processors */

/** A transform of one length in one direction. */
typedef struct ORVA_FFT ORVA_FFT;

ORVA_API ORVA_FFT *ORVA_FFTProcCreate(int32_t length);

ORVA_API ORVA_FFT *ORVA_IFFTProcCreate(int32_t length);

ORVA_API int32_t ORVA_FFTProcExecute(ORVA_FFT *fft, const float *input, ORVA_COMPLEX *output);

ORVA_API int32_t ORVA_IFFTProcExecuteEx(ORVA_FFT *fft, ORVA_COMPLEX *input, float *output, bool normalise);

ORVA_API int32_t ORVA_FFTProcExecutePSDEx(ORVA_FFT *fft, const float *input, float *power,
                                          ORVA_COMPLEX *work);

ORVA_API bool ORVA_FFTProcDestroy(ORVA_FFT *fft);

#endif
