// Threads that are cancelled while plans take long.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_slow_planner.h"
#include "fft/ORVAfft_store.h"
#include "support/process.h"

#include <kett/KTsettings.h>

#include <atomic>
#include <thread>

#include <pthread.h>
#include <unistd.h>

using namespace orva;

using store::Store;
using support::inOwnProcess;

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
