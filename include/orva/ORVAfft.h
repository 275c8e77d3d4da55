/* SPDX-License-Identifier: GPL-2.0-or-later */
/** @file
 *  Fast Fourier transforms of real data, on FFTW in single precision: the engine around FFTW's planner, and
 *  processors.
 *
 *  FFTW's planner serves one thread at a time, so the engine keeps one lock around every use that this
 *  library makes of it. Transforms are executed without any lock. On Linux it also switches on FFTW's own
 *  lock around the making and destroying of plans, for the whole process, where libfftw3f_threads.so.3 is
 *  installed: so other copies of this library, and a host that plans with FFTW itself, need not know of each
 *  other. That lock leaves out wisdom: while this library reads or writes the store, nobody else may be at
 *  the planner. Where it is missing, nobody else may be while a thread is in a create or destroy call of this
 *  library, prepares plans or stops the engine.
 *
 *  What FFTW has learned about planning, its wisdom, is kept between runs in one file, the store:
 *  "ruko.optimization" in the folder that the environment value KT_DATA_PATH names. It holds the text of
 *  fftwf_export_wisdom_to_string() and nothing else. It is read once in a process, as soon as the folder is
 *  known: at the start of the engine, at the creation of a processor or in a preparation. It is written at
 *  the end of a preparation and when the engine stops, if it differs from FFTW's wisdom in length or in any
 *  byte. Settings, read again at each use:
 *
 *      orva.fftw.use_wisdom=[1]          off: the store is neither read nor written
 *      orva.fftw.prepare_plans=[0]       on: ORVA_OptimizeFFT() prepares plans
 *      orva.fftw.max_plan_len=[4096]     the longest transform that it prepares
 *
 *  Nothing about the store is reported. One that is damaged in form, comes from another build of FFTW, or has
 *  more than 64 MiB is ignored and replaced by the next save. A path of more than 511 characters is cut. A
 *  save puts the new store in the old one's place in one step, so that a crash or a full disk leaves either
 *  the old store or the new one; a symbolic link in that place is replaced, and what it leads to stays as it
 *  is. A process killed during a save may leave a file ".kett-*.tmp" beside the store, which nothing reads;
 *  after a day the next save removes it. A program with raised rights, such as a set-user-ID one, finds no
 *  folder in its environment, only one that KTENV_SetEnvValue() has published.
 *
 *  Loading the library starts the engine and unloading stops it, so a host need not call it at all. One that
 *  wants the store filled while it starts up:
 *
 *      KTENV_SetEnvValue("KT_DATA_PATH", "/var/lib/host");
 *      KTSETTINGS_SetEx(NULL, "orva.fftw.prepare_plans=%d", 1);
 *      ORVA_OptimizeFFT(false);                              // returns at once; a thread prepares the plans
 *
 *      ORVA_FFT *fft = ORVA_FFTProcCreate(1024);
 *      int32_t bins = ORVA_FFTProcExecute(fft, input, spectrum);   // 513
 *      ORVA_FFTProcDestroy(fft);
 *
 *  A child of fork() does without the planner if another thread was at it at the moment of the fork:
 *  whatever would plan is then refused, as orva/ORVAcore.h tells. It never waits for a thread of its parent.
 *
 *  FFTW belongs to the whole process: the engine never clears FFTW's wisdom, and when this library is
 *  unloaded, FFTW stays loaded with everything that its planner has allocated.
 *
 *  FFTW itself ends the process where it gets no memory. So a call that plans, and a load or a save of the
 *  store, first ask the heap for what FFTW is about to take, 1 MiB and 32 bytes a sample, and give it back;
 *  without it they refuse. Where that leaves the process to FFTW: another thread takes the memory in between,
 *  FFTW executes a length at which it takes memory (::ORVA_FFT), or the whole wisdom of the process is larger
 *  than some ten thousand plans leave behind.
 *
 *  A call that creates or destroys a processor waits while another thread plans: microseconds as a rule, but
 *  11 seconds while a plan of the prime length 20000003 is made.
 *
 *  Not promised: equal bits between two machines or two wisdoms, since FFTW chooses its code by both; nor
 *  that a store stays unwritten when FFTW has learned nothing, since FFTW writes the lines of its wisdom in
 *  no fixed order.
 */
#ifndef ORVA_ORVAFFT_H
#define ORVA_ORVAFFT_H

#include <orva/ORVAtypes.h>

/** Starts the engine: makes the planner's lock and reads the store, if the folder is known and wisdom is in
 *  use. While the engine runs, a further call does nothing.
 *
 *  @return true.
 *
 *  The start of the library calls it. After ORVA_FinalizeFFT() it starts the engine again, with two limits:
 *  the store is not read a second time, and a preparation ends after the first length that it looks at.
 *
 *  Threads: one, while no other call of the library is under way.   Real time: no (allocates, locks, reads a
 *  file).
 */
ORVA_API bool ORVA_InitializeFFT(void);

/** Stops the engine. It waits for a preparation that is under way, saves the wisdom, and destroys the
 *  planner's lock. The save writes the store if the store differs from FFTW's wisdom, and only if the engine
 *  has read it, or looked for it and found none.
 *
 *  A preparation ends after the transform length that it is on, and saves the wisdom; one that is still waiting for
 *  its folder goes on waiting, for 300 ms at most. A store that cannot be written stays as it is.
 *
 *  In a child of fork() that has lost the planner, nothing is waited for, written or destroyed.
 *
 *  @return true.
 *
 *  The end of the library calls it. Until the next ORVA_InitializeFFT(), nothing may be called that takes the
 *  lock, which is gone: not ORVA_FinalizeFFT() again, not ORVA_OptimizeFFT(), not ORVA_XcorrCoef(), and no
 *  call that creates or destroys a processor for transforms, correlation or the lapped transform. Processors
 *  that are still alive stay valid, and may execute.
 *
 *  Where the engine was never started, that is before the library's own start, this call and all others run
 *  without a lock.
 *
 *  Threads: one, while no other call of the library is under way.   Real time: no (waits, locks, may write a
 *  file).
 */
ORVA_API bool ORVA_FinalizeFFT(void);

/** Prepares plans in the background, so that the store fills up: a thread plans, forward and inverse, each of
 *  the lengths 16, 32, 64 ... 16384 that is not above "orva.fftw.max_plan_len", throws the plans away and
 *  saves the wisdom that FFTW has gathered. With "orva.fftw.prepare_plans" off, the default, the thread ends
 *  without planning or saving.
 *
 *  The thread first sleeps for 50 ms, and up to five times more while KT_DATA_PATH is not set; if it never
 *  is, it ends with the warning "__InitializeFFTWPlans: KT_DATA_PATH not set!".
 *
 *  @param wait  true: return when the preparation has ended, whether this call or an earlier one started it;
 *               the next call then starts a new one. False: return at once. After a call that did not wait,
 *               further calls that do not wait start nothing, even when the preparation has long ended: a
 *               call that waits has to come between them.
 *  @return      true, also when the thread could not be started; a later call then tries again. In a child of
 *               fork() that has lost the planner, true at once, with nothing started.
 *
 *  Call it while the engine runs, and not while another thread stops it. Before the very first start of the
 *  engine it works without a lock, so no other thread may then be in a call of the library; that start loses
 *  track of the preparation. After ORVA_FinalizeFFT() it must not be called.
 *
 *  Threads: any, several may wait.   Real time: no (locks, starts a thread, may wait).
 */
ORVA_API bool ORVA_OptimizeFFT(bool wait);

/* Processors */

/** A transform of one length N in one direction: forward (real to complex) or inverse (complex to real).
 *
 *  Real data is N floats. Complex data is bins 0 to floor(N / 2), each a real and an imaginary part; bin 0 is
 *  the constant term, and for even N the last bin is the one at half the sampling rate. The bins above are
 *  the complex conjugates of these in reverse order, and are never stored. So floor(N / 2) + 1 complex values
 *  are meaningful, while ORVA_CreateComplexVector() gives room for N.
 *
 *      X[k] = sum over n of x[n] exp(-2 pi i k n / N)                           forward, not scaled
 *      x[n] = sum over all N bins of X[k] exp(2 pi i k n / N)                   inverse, divided by N if asked
 *
 *  Every array of floats or complex values must be aligned to 16 bytes, as fftwf_malloc(),
 *  ORVA_CreateComplexVector() and KTMEM_NewAligned() align. Neither the alignment nor the direction of the
 *  handle is checked: what FFTW does with wrong ones is undefined.
 *
 *  A processor holds no buffers, and an execution only reads it: one processor may serve several threads,
 *  each with arrays of its own. It is created and destroyed while the engine runs.
 *
 *  Executions take no lock, and this library allocates nothing in them, except for the work array of
 *  ORVA_FFTProcExecutePSDEx() where the caller gives none. FFTW itself takes a block from the heap at some
 *  lengths, in every execution. Measured with FFTW 3.3.10 and an empty wisdom: at odd lengths, except 1 to 15
 *  and 25, and at most even lengths with a prime factor of 37 or more (74, 82, 94 ...); at no other even
 *  length up to 4200, nor at powers of two up to 4194304. FFTW may choose otherwise on another processor or
 *  with a wisdom store. A real-time thread uses powers of two.
 *
 *      ORVA_FFT *fft = ORVA_FFTProcCreate(1024);
 *      ORVA_COMPLEX *work = ORVA_CreateComplexVector(fft);
 *      ...
 *      ORVA_ApplyWindow(window, frame, 1024);                                 // frame by frame
 *      int32_t bins = ORVA_FFTProcExecutePSDEx(fft, frame, power, work);      // 513; power holds 516 floats
 *      ORVA_PSDtoDB(1024, power, decibels, NULL, 1.0, 120.0);
 *      ...
 *      ORVA_DestroyComplexVector(work);
 *      ORVA_FFTProcDestroy(fft);
 */
typedef struct ORVA_FFT ORVA_FFT;

/** Makes a forward processor.
 *
 *  @param length  N, real samples; every length that FFTW accepts, fastest with small prime factors.
 *  @return        the processor, to be destroyed by ORVA_FFTProcDestroy(); null when memory is out, also where
 *                 only FFTW would lack it, and in a child of fork() that has lost the planner. For a length
 *                 that FFTW refuses, such as zero and below, a processor that executes nothing.
 *
 *  It waits for a plan that another thread is making, of a large prime length for seconds.
 *
 *  Memory: some ten bytes, beside what FFTW keeps for its plan; while it is made, 8 N bytes and the question to the heap.
 *  Threads: any, while the engine runs.   Real time: no (allocates, locks, plans, may read the wisdom store).
 */
ORVA_API ORVA_FFT *ORVA_FFTProcCreate(int32_t length);

/** Makes an inverse processor.
 *
 *  @param length  N, real samples, as for ORVA_FFTProcCreate().
 *  @return        as for ORVA_FFTProcCreate().
 *
 *  Threads: any, while the engine runs.   Real time: no (allocates, locks, plans, may read the wisdom store).
 */
ORVA_API ORVA_FFT *ORVA_IFFTProcCreate(int32_t length);

/** Transforms real samples to their spectrum, without scaling.
 *
 *  When `input` and `output` are the same address, it reports the terminal error "ORVA_FFTProcExecute: Input
 *  and output vectors must be different!" and then transforms, to values without meaning.
 *
 *  @param fft     a processor of ORVA_FFTProcCreate().
 *  @param input   N floats, aligned; stays as it is.
 *  @param output  out: floor(N / 2) + 1 complex values, aligned; must not overlap `input`.
 *  @return        floor(N / 2) + 1, the number of bins; 0, nothing written, when an argument is null or FFTW
 *                 has refused the length.
 *
 *  Threads: any, several with one processor.   Real time: yes at lengths where FFTW takes nothing from the
 *  heap, see ::ORVA_FFT (no lock or system call).
 */
ORVA_API int32_t ORVA_FFTProcExecute(const ORVA_FFT *fft, const float *input, ORVA_COMPLEX *output);

/** Transforms a spectrum back to real samples.
 *
 *  When `input` and `output` are the same address, it reports the terminal error "ORVA_IFFTProcExecute: Input
 *  and output vectors must be different!" and then transforms, to values without meaning.
 *
 *  @param fft        a processor of ORVA_IFFTProcCreate().
 *  @param input      floor(N / 2) + 1 complex values, aligned; the call overwrites them.
 *  @param output     out: N floats, aligned; must not overlap `input`.
 *  @param normalise  true: multiply each sample by 1 / N, both in float, so that forward and inverse in a row
 *                    give the samples back; false: they give N times the samples.
 *  @return           N; 0, nothing written, when an argument is null or FFTW has refused the length.
 *
 *  Threads: any, several with one processor.   Real time: yes at lengths where FFTW takes nothing from the
 *  heap, see ::ORVA_FFT (no lock or system call).
 */
ORVA_API int32_t ORVA_IFFTProcExecuteEx(const ORVA_FFT *fft, ORVA_COMPLEX *input, float *output,
                                        bool normalise);

/** Transforms real samples to the power of each bin, re * re + im * im in float, without scaling.
 *
 *  Powers are computed in whole groups of four, floor(N / 8) + 1 groups, so up to three values are written
 *  past the last bin. These have no meaning.
 *
 *  @param fft    a processor of ORVA_FFTProcCreate().
 *  @param input  N floats, aligned; stays as it is.
 *  @param power  out: 4 * (floor(N / 8) + 1) floats, aligned (516 for N = 1024, which has 513 bins).
 *  @param work   out: N complex values and four at least, aligned; holds the spectrum after the call. Null:
 *                the call allocates and frees a work array of its own.
 *  @return       floor(N / 2) + 1, the number of bins; 0, nothing written, when `fft`, `input` or `power` is
 *                null, FFTW has refused the length or there is no memory for the work array.
 *
 *  The three arrays must not overlap each other.
 *
 *  Threads: any, several with one processor.   Real time: with a work array yes, at lengths where FFTW takes
 *  nothing from the heap, see ::ORVA_FFT (no lock or system call); without one no (allocates).
 */
ORVA_API int32_t ORVA_FFTProcExecutePSDEx(const ORVA_FFT *fft, const float *input, float *power,
                                          ORVA_COMPLEX *work);

/** Destroys a processor of either direction.
 *
 *  @param fft  the processor, gone after the call, or null. Its plan stays in memory in a child of fork()
 *              that has lost the planner.
 *  @return     true, or false for null, which does nothing and takes no lock.
 *
 *  Threads: any, while the engine runs and no other thread uses the processor.   Real time: no (locks, frees
 *  memory).
 */
ORVA_API bool ORVA_FFTProcDestroy(ORVA_FFT *fft);

#endif
