// The FFT engine as the other families and the tests of its private steps see it.
#pragma once

#include <kett/KTmutex.h>
#include <kett/KTthread.h>
#include <orva/ORVAfft.h>

#include <fftw3.h>

#include <atomic>
#include <cstdint>

// One real transform.
struct ORVA_FFT {
    int32_t length;  // real samples
    fftwf_plan plan; // owned; null if FFTW refused the length
};

namespace orva
{

// The one lock around FFTW's planner: plan creation, plan destruction, wisdom import and export. Taken by
// enterPlanner() alone; null, and then no lock, before the engine's start.
extern KT_MUTEX *__FFTW_PlanLock;

extern KT_THREAD *__FFTW_InitThread; // the preparation, null when none was started or it has been collected
extern bool __FFTW_WisdomLoaded;     // the load from the store has run to its end; never cleared
extern bool __FFTW_Initialized;      // between ORVA_InitializeFFT and ORVA_FinalizeFFT

// Tells the preparation to stop. Set by ORVA_FinalizeFFT and never cleared: after a restart, a preparation
// stops after its first length. Relaxed: no ordering rests on it, and being late by a length is harmless.
extern std::atomic<bool> __FFTW_StopOptimization;

// Every use of the planner, in any family, stands between these two. False, with nothing taken, in a process that has
// lost the planner.
[[nodiscard]] bool enterPlanner();
void leavePlanner();

// In a process whose other threads are gone, wherever they were: the planner is lost if one of them was at it, and there
// is no preparation any more.
void leaveOutAbsentThreads();

// FFTW ends the process where it gets no memory. So what it is about to take is asked of the heap first, and given back: the
// most that it took for one plan of so many samples, and for a wisdom of so many bytes. Before any use of the planner that
// takes memory, inside it.
[[nodiscard]] bool heapHoldsPlan(int32_t length);
[[nodiscard]] bool heapHoldsWisdom(int32_t size);

ORVA_FFT *__FFTW_CreatePlan(int32_t length, bool inverse);
bool __FFTW_LoadWisdom();
bool __FFTW_SaveWisdom();
int32_t __InitializeFFTWPlans(void *unused);

} // namespace orva
