// What ends while plans take long: this program stands in for FFTW's planner, and takes its time.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_store.h"
#include "support/process.h"

#include <kett/KTsettings.h>

#include <atomic>
#include <chrono>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

using namespace orva;

using store::Store;
using support::inOwnProcess;

namespace
{

std::atomic<int> plans = 0;
std::atomic<bool> isStopping = false;

// Makes the plan by the function of that name that would have been called without us.
template <auto *ours, class... Arguments> fftwf_plan planSlowly(const char *name, Arguments... arguments)
{
    const bool isThird = ++plans == 3; // the first of the second length
    while (isThird && !isStopping)
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    return reinterpret_cast<decltype(ours)>(dlsym(RTLD_NEXT, name))(arguments...);
}

} // namespace

fftwf_plan fftwf_plan_dft_r2c_1d(int n, float *in, fftwf_complex *out, unsigned flags)
{
    return planSlowly<fftwf_plan_dft_r2c_1d>("fftwf_plan_dft_r2c_1d", n, in, out, flags);
}

fftwf_plan fftwf_plan_dft_c2r_1d(int n, fftwf_complex *in, float *out, unsigned flags)
{
    return planSlowly<fftwf_plan_dft_c2r_1d>("fftwf_plan_dft_c2r_1d", n, in, out, flags);
}

// The stop sets its flag under the planner's lock, for which the preparation asks again as soon as it has released it.
TEST(Preparation, AStopEndsItAtTheLengthThatItIsOn)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        KTSETTINGS_SetEx(nullptr, "orva.fftw.prepare_plans=%d", 1);
        ORVA_InitializeFFT();
        ORVA_OptimizeFFT(false);
        while (plans < 3)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        isStopping = true;
        ORVA_FinalizeFFT();
        EXPECT_EQ(plans, 4);
        EXPECT_TRUE(store.exists());
    });
}

// It is cancelled as soon as the preparation has ended, and keeps no lock.
TEST(Preparation, AThreadThatWaitsForItMayBeCancelled)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        KTSETTINGS_SetEx(nullptr, "orva.fftw.prepare_plans=%d", 1);
        KTSETTINGS_SetEx(nullptr, "orva.fftw.max_plan_len=%d", 32);
        isStopping = true;
        ORVA_InitializeFFT();
        std::atomic<bool> isBack = false;
        std::thread waiting([&] {
            ORVA_OptimizeFFT(true);
            isBack = true;
            pthread_testcancel();
            ADD_FAILURE() << "cancelled before";
        });
        while (plans < 1)
            std::this_thread::yield();
        pthread_cancel(waiting.native_handle());
        alarm(60);
        ORVA_OptimizeFFT(true);
        waiting.join();
        EXPECT_TRUE(isBack);
        ORVA_FFTProcDestroy(ORVA_FFTProcCreate(16));
        ORVA_FinalizeFFT();
        EXPECT_EQ(support::readFile(store.path), store::wisdom());
    });
}

// The planner's lock is held while the store is read.
TEST(Preparation, AThreadThatPlansMayBeCancelled)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        std::thread planning([] {
            pthread_cancel(pthread_self());
            ORVA_FFTProcDestroy(ORVA_FFTProcCreate(16)); // reads the store first
            pthread_testcancel();
        });
        planning.join();
        alarm(60);
        ORVA_FFTProcDestroy(ORVA_FFTProcCreate(16));
        ORVA_FinalizeFFT();
        EXPECT_TRUE(store.exists());
    });
}
