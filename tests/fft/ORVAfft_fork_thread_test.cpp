// A child of fork that starts a thread of the engine.
#include "fft/ORVAfft_child.h"
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_store.h"

#include <gtest/gtest.h>

using namespace orva;

using store::Store;

// The preparation sleeps for 50 ms before it plans.
TEST(EngineFork, AChildHasNoPreparationAndMayStartOne)
{
    support::inOwnProcess([] {
        const Store store;
        store.announce();
        ORVA_InitializeFFT();
        ORVA_OptimizeFFT(false);
        KT_THREAD *const inParent = __FFTW_InitThread;
        ASSERT_NE(inParent, nullptr);
        inChild([&] {
            EXPECT_EQ(__FFTW_InitThread, nullptr);
            ORVA_OptimizeFFT(false);
            EXPECT_NE(__FFTW_InitThread, nullptr);
            EXPECT_NE(__FFTW_InitThread, inParent);
            ORVA_FinalizeFFT(); // waits for it
        });
        EXPECT_TRUE(store.exists());
        ORVA_FinalizeFFT();
    });
}
