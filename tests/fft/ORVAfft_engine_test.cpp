// Start and stop of the engine, and the creation of plans.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_reference.h"
#include "fft/ORVAfft_store.h"
#include "support/log.h"
#include "support/process.h"
#include "support/random.h"

#include <algorithm>

using namespace orva;

using store::Store;
using support::inOwnProcess;

TEST(EngineStart, TwiceInARowMakesOneLock)
{
    inOwnProcess([] {
        const Store none;
        EXPECT_EQ(__FFTW_PlanLock, nullptr);
        EXPECT_TRUE(ORVA_InitializeFFT());
        KT_MUTEX *const lock = __FFTW_PlanLock;
        EXPECT_NE(lock, nullptr);
        EXPECT_TRUE(__FFTW_Initialized);
        EXPECT_TRUE(ORVA_InitializeFFT());
        EXPECT_EQ(__FFTW_PlanLock, lock);
        EXPECT_TRUE(ORVA_FinalizeFFT());
    });
}

TEST(EngineStop, LeavesTheHandleAndSetsTheFlags)
{
    inOwnProcess([] {
        const Store none;
        ORVA_InitializeFFT();
        KT_MUTEX *const lock = __FFTW_PlanLock;
        EXPECT_FALSE(__FFTW_StopOptimization);
        EXPECT_TRUE(ORVA_FinalizeFFT());
        EXPECT_FALSE(__FFTW_Initialized);
        EXPECT_TRUE(__FFTW_StopOptimization);
        EXPECT_EQ(__FFTW_PlanLock, lock);
    });
}

TEST(EngineStop, ARestartForgetsThePreparationAndClearsNeitherFlag)
{
    inOwnProcess([] {
        const Store store;
        support::writeFile(store.path, store::wisdomOf({16}));
        store.announce();
        ORVA_InitializeFFT();
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        ORVA_OptimizeFFT(false);
        EXPECT_NE(__FFTW_InitThread, nullptr);
        ORVA_FinalizeFFT();

        ORVA_InitializeFFT();
        EXPECT_EQ(__FFTW_InitThread, nullptr);
        EXPECT_TRUE(__FFTW_Initialized);
        EXPECT_TRUE(__FFTW_StopOptimization);
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        ORVA_FinalizeFFT();
    });
}

TEST(EngineStop, ARestartDoesNotReadTheStoreAgain)
{
    inOwnProcess([] {
        const Store store;
        support::writeFile(store.path, store::wisdomOf({16}));
        store.announce();
        ORVA_InitializeFFT();
        const std::string known = store::wisdom();
        ORVA_FinalizeFFT();

        fftwf_forget_wisdom();
        const std::string more = store::wisdomOf({16, 360});
        fftwf_import_wisdom_from_string(known.c_str());
        support::writeFile(store.path, more);
        ORVA_InitializeFFT();
        EXPECT_FALSE(__FFTW_LoadWisdom());
        EXPECT_EQ(store::wisdom(), known);
        ORVA_FinalizeFFT();
        EXPECT_EQ(support::readFile(store.path), known);
    });
}

TEST(EngineNeverStarted, EverythingWorksWithoutALock)
{
    inOwnProcess([] {
        const support::Log log;
        const Store store;
        store.announce();
        EXPECT_TRUE(ORVA_FinalizeFFT());
        EXPECT_EQ(__FFTW_PlanLock, nullptr);
        EXPECT_FALSE(store.exists()); // nothing was loaded, so nothing is saved
        ORVA_FFT *fft = __FFTW_CreatePlan(64, false);
        ASSERT_NE(fft, nullptr);
        EXPECT_NE(fft->plan, nullptr);
        EXPECT_TRUE(ORVA_FFTProcDestroy(fft));
        EXPECT_TRUE(ORVA_OptimizeFFT(true));
        EXPECT_TRUE(ORVA_FinalizeFFT());
        EXPECT_TRUE(ORVA_FinalizeFFT());
        EXPECT_EQ(support::readFile(store.path), store::wisdom());
        EXPECT_TRUE(log.messages.empty());
    });
}

TEST(PlanCreation, GivesTheTransformOfTheDefinition)
{
    inOwnProcess([] {
        const Store none;
        ORVA_InitializeFFT();
        support::Random random;
        for (const int32_t length : {1, 2, 3, 4, 7, 16, 100, 127, 256, 360, 1023, 1024}) {
            const std::vector<float> x = random.noise(static_cast<size_t>(length));
            const reference::Bins bins = reference::forward(x);
            for (const bool inverse : {false, true}) {
                ORVA_FFT *fft = __FFTW_CreatePlan(length, inverse);
                ASSERT_NE(fft, nullptr);
                EXPECT_EQ(fft->length, length);
                ASSERT_NE(fft->plan, nullptr);
                EXPECT_LT(reference::deviation(fft, inverse, x, bins), reference::tolerance)
                    << "length " << length << (inverse ? ", inverse" : ", forward");
                ORVA_FFTProcDestroy(fft);
            }
        }
        ORVA_FinalizeFFT();
    });
}

TEST(PlanCreation, ALengthThatFFTWRefusesGivesARecordWithoutAPlan)
{
    inOwnProcess([] {
        const Store none;
        const support::Log log;
        ORVA_InitializeFFT();
        for (const int32_t length : {0, -1, -16, -1000000, INT32_MIN})
            for (const bool inverse : {false, true}) {
                ORVA_FFT *fft = __FFTW_CreatePlan(length, inverse);
                ASSERT_NE(fft, nullptr);
                EXPECT_EQ(fft->length, length);
                EXPECT_EQ(fft->plan, nullptr);
                EXPECT_TRUE(ORVA_FFTProcDestroy(fft));
            }
        EXPECT_TRUE(log.messages.empty());
        ORVA_FinalizeFFT();
    });
}

TEST(PlanCreation, PlansAreNotShared)
{
    inOwnProcess([] {
        const Store none;
        ORVA_InitializeFFT();
        ORVA_FFT *first = __FFTW_CreatePlan(512, false);
        ORVA_FFT *second = __FFTW_CreatePlan(512, false);
        EXPECT_NE(first, second);
        EXPECT_NE(first->plan, second->plan);
        ORVA_FFTProcDestroy(first);
        ORVA_FFTProcDestroy(second);
        ORVA_FinalizeFFT();
    });
}

// FFTW notes the planner's flags beside each plan, so equal wisdom means equal flags.
TEST(PlanCreation, PlansWithTheEstimateFlagAlone)
{
    inOwnProcess([] {
        const Store none;
        ORVA_InitializeFFT();
        const std::string expected = store::wisdomOf({60, 1024});
        for (const int32_t length : {60, 1024})
            for (const bool inverse : {false, true})
                ORVA_FFTProcDestroy(__FFTW_CreatePlan(length, inverse));
        EXPECT_EQ(store::wisdom(), expected);
        ORVA_FinalizeFFT();
    });
}

// 1 / N is taken of N rounded to float, 2^24 here; 1 / N rounded once would be the float below. The record has that length,
// the plan a short one, and what lies beyond the plan is scaled as it was.
TEST(InverseTransform, NormalisesByTheLengthRoundedToFloat)
{
    inOwnProcess([] {
        const Store none;
        ORVA_InitializeFFT();
        constexpr int32_t length = (1 << 24) + 1;
        ORVA_FFT *const fft = __FFTW_CreatePlan(16, true);
        fft->length = length;
        auto *const output = static_cast<float *>(fftwf_malloc(sizeof(float) * length));
        alignas(16) ORVA_COMPLEX bins[9] = {{1.0f, 0.0f}};
        std::fill(output, output + length, 3.0f);
        EXPECT_EQ(ORVA_IFFTProcExecuteEx(fft, bins, output, true), length);
        EXPECT_EQ(output[0], 0x1p-24f);
        EXPECT_EQ(output[length - 1], 3.0f * 0x1p-24f);
        fftwf_free(output);
        ORVA_FFTProcDestroy(fft);
        ORVA_FinalizeFFT();
    });
}
