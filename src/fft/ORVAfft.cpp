// The engine around FFTW's planner: start and stop, the start of a preparation, and the creation of a plan.
#include <orva/ORVAfft.h>

#include "common/memory.h"
#include "fft/ORVAfft_internal.h"
#include "platform/pinning.h"

namespace orva
{

KT_THREAD *__FFTW_InitThread = nullptr;
bool __FFTW_Initialized = false;
std::atomic<bool> __FFTW_StopOptimization = false;

namespace
{

// The scratch arrays are only looked at for their alignment: FFTW_ESTIMATE does not write to them.
fftwf_plan planOn(float *real, fftwf_complex *bins, int32_t length, bool inverse)
{
    if (inverse)
        return fftwf_plan_dft_c2r_1d(length, bins, real, FFTW_ESTIMATE);
    return fftwf_plan_dft_r2c_1d(length, real, bins, FFTW_ESTIMATE);
}

// Makes the plan of a record; false when memory is out. FFTW refuses a length of zero or below, which leaves the record
// without a plan.
bool makePlan(ORVA_FFT &fft, bool inverse)
{
    if (fft.length <= 0)
        return true;
    const auto count = static_cast<size_t>(fft.length);
    float *real = fftwf_alloc_real(count);
    fftwf_complex *bins = fftwf_alloc_complex(count);
    const bool hasMemory = real != nullptr && bins != nullptr && heapHoldsPlan(fft.length);
    if (hasMemory)
        fft.plan = planOn(real, bins, fft.length, inverse);
    fftwf_free(bins);
    fftwf_free(real);
    return hasMemory;
}

} // namespace

ORVA_FFT *__FFTW_CreatePlan(int32_t length, bool inverse)
{
    __FFTW_LoadWisdom();
    if (!enterPlanner())
        return nullptr;
    auto *fft = newZeroed<ORVA_FFT>(1);
    if (fft != nullptr) {
        fft->length = length;
        if (!makePlan(*fft, inverse)) {
            std::free(fft);
            fft = nullptr;
        }
    }
    leavePlanner();
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
    __FFTW_PlanLock = MutexInit();
    __FFTW_InitThread = nullptr;
    __FFTW_LoadWisdom();
    __FFTW_Initialized = true;
    return true;
}

bool ORVA_FinalizeFFT(void)
{
    const bool hasPlanner = enterPlanner();
    __FFTW_Initialized = false;
    __FFTW_StopOptimization.store(true, std::memory_order_relaxed);
    if (!hasPlanner) // nothing may be saved, and the lock may be held for ever
        return true;
    leavePlanner();
    if (__FFTW_InitThread != nullptr)
        KTTHREAD_JoinThreadEx(__FFTW_InitThread, 0);
    if (__FFTW_WisdomLoaded) // looked at after the join: the preparation may have loaded it
        __FFTW_SaveWisdom();
    MutexDestroy(__FFTW_PlanLock);
    return true;
}

bool ORVA_OptimizeFFT(bool wait)
{
    if (!enterPlanner())
        return true;
    if (__FFTW_InitThread == nullptr)
        __FFTW_InitThread = KTTHREAD_AddThread(__InitializeFFTWPlans, nullptr, 0);
    KT_THREAD *thread = __FFTW_InitThread;
    leavePlanner();
    if (!wait || thread == nullptr)
        return true;
    KTTHREAD_JoinThreadEx(thread, 0);
    if (!enterPlanner())
        return true;
    if (__FFTW_InitThread == thread) // another that waited may have collected it and started the next
        __FFTW_InitThread = nullptr;
    leavePlanner();
    return true;
}
