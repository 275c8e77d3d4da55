// The engine around FFTW's planner: start and stop, the start of a preparation, and the creation of a plan.
#include <orva/ORVAfft.h>

#include "common/memory.h"
#include "fft/ORVAfft_internal.h"
#include "platform/pinning.h"
#include "platform/process.h"

namespace orva
{

KT_MUTEX *__FFTW_PlanLock = nullptr;
KT_THREAD *__FFTW_InitThread = nullptr;
bool __FFTW_Initialized = false;
std::atomic<bool> __FFTW_StopOptimization = false;

namespace
{

int64_t startedIn = 0; // process

// A child of fork has the state in which a preparation was caught at work in its parent, but not the preparation:
// the lock may stay held for ever, and FFTW's planner may stand in the middle of a change.
bool wasPreparationCaught()
{
    if (currentProcess() == startedIn || __FFTW_InitThread == nullptr)
        return false;
    __FFTW_StopOptimization.store(true, std::memory_order_relaxed); // it may also be one of the child itself
    return KTTHREAD_JoinThreadEx(__FFTW_InitThread, 0) == 0;
}

// The scratch arrays are only looked at for their alignment: FFTW_ESTIMATE does not write to them. Without
// both, as for a length of zero or below, which FFTW refuses, there is no plan.
fftwf_plan planOn(float *real, fftwf_complex *bins, int32_t length, bool inverse)
{
    if (real == nullptr || bins == nullptr)
        return nullptr;
    if (inverse)
        return fftwf_plan_dft_c2r_1d(length, bins, real, FFTW_ESTIMATE);
    return fftwf_plan_dft_r2c_1d(length, real, bins, FFTW_ESTIMATE);
}

fftwf_plan newPlan(int32_t length, bool inverse)
{
    if (length <= 0)
        return nullptr;
    const auto count = static_cast<size_t>(length);
    float *real = fftwf_alloc_real(count);
    fftwf_complex *bins = fftwf_alloc_complex(count);
    const fftwf_plan plan = planOn(real, bins, length, inverse);
    fftwf_free(bins);
    fftwf_free(real);
    return plan;
}

} // namespace

ORVA_FFT *__FFTW_CreatePlan(int32_t length, bool inverse)
{
    __FFTW_LoadWisdom();
    MutexLock(__FFTW_PlanLock);
    auto *fft = newZeroed<ORVA_FFT>(1);
    if (fft != nullptr) {
        fft->length = length;
        fft->plan = newPlan(length, inverse);
    }
    MutexUnlock(__FFTW_PlanLock);
    return fft;
}

} // namespace orva

using namespace orva;

bool ORVA_InitializeFFT(void)
{
    if (__FFTW_Initialized)
        return true;
    // Here and not on the preparing thread, which an unload may wait for with the loader's lock held.
    pinFFTW();
    startedIn = currentProcess();
    __FFTW_PlanLock = MutexInit();
    __FFTW_InitThread = nullptr;
    __FFTW_LoadWisdom();
    __FFTW_Initialized = true;
    return true;
}

bool ORVA_FinalizeFFT(void)
{
    if (wasPreparationCaught()) {
        __FFTW_Initialized = false;
        return true;
    }
    MutexLock(__FFTW_PlanLock);
    __FFTW_Initialized = false;
    __FFTW_StopOptimization.store(true, std::memory_order_relaxed);
    MutexUnlock(__FFTW_PlanLock);
    if (__FFTW_InitThread != nullptr)
        KTTHREAD_JoinThreadEx(__FFTW_InitThread, 0);
    if (__FFTW_WisdomLoaded) // looked at after the join: the preparation may have loaded it
        __FFTW_SaveWisdom();
    MutexDestroy(__FFTW_PlanLock);
    return true;
}

bool ORVA_OptimizeFFT(bool wait)
{
    MutexLock(__FFTW_PlanLock);
    if (__FFTW_InitThread == nullptr)
        __FFTW_InitThread = KTTHREAD_AddThread(__InitializeFFTWPlans, nullptr, 0);
    KT_THREAD *thread = __FFTW_InitThread;
    MutexUnlock(__FFTW_PlanLock);
    if (!wait || thread == nullptr)
        return true;
    KTTHREAD_JoinThreadEx(thread, 0);
    MutexLock(__FFTW_PlanLock);
    if (__FFTW_InitThread == thread) // another that waited may have collected it and started the next
        __FFTW_InitThread = nullptr;
    MutexUnlock(__FFTW_PlanLock);
    return true;
}
