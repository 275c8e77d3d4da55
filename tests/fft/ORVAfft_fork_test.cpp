// What a child of fork has of the engine: all of it, or all but the planner.
#include "fft/ORVAfft_child.h"
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_store.h"
#include "support/bits.h"
#include "support/random.h"

#include <orva/ORVAfmclt.h>
#include <orva/ORVAxcorr.h>

#include <atomic>
#include <thread>

using namespace orva;

using store::Store;

namespace
{

// A thread inside the planner, for as long as this lives.
class Visitor
{
public:
    Visitor()
    {
        while (!isInside)
            std::this_thread::yield();
    }

    ~Visitor()
    {
        isToLeave = true;
        thread.join();
    }

private:
    void visit()
    {
        ASSERT_TRUE(enterPlanner());
        isInside = true;
        while (!isToLeave)
            std::this_thread::yield();
        leavePlanner();
    }

    std::atomic<bool> isInside = false;
    std::atomic<bool> isToLeave = false;
    std::thread thread{&Visitor::visit, this};
};

// What is made before a fork and used after it.
struct Processors {
    ORVA_FFT *fft = ORVA_FFTProcCreate(64);
    ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(10, 20);
    ORVA_FMCLT *fmclt = ORVA_FMCLTProcCreate(16);
};

const Processors &processors()
{
    static const Processors made;
    return made;
}

std::vector<float> spectrumOf(const std::vector<float> &input)
{
    alignas(16) float aligned[64];
    alignas(16) ORVA_COMPLEX bins[33];
    std::copy(input.begin(), input.end(), aligned);
    EXPECT_EQ(ORVA_FFTProcExecute(processors().fft, aligned, bins), 33);
    std::vector<float> parts;
    for (const ORVA_COMPLEX bin : bins)
        parts.insert(parts.end(), {bin.re, bin.im});
    return parts;
}

void expectNoPlanner(const Store &store)
{
    const float signal[20] = {1.0f, 2.0f, -1.0f};
    EXPECT_EQ(ORVA_FFTProcCreate(64), nullptr);
    EXPECT_EQ(ORVA_IFFTProcCreate(64), nullptr);
    EXPECT_EQ(ORVA_FMCLTProcCreate(16), nullptr);
    EXPECT_EQ(ORVA_XcorrCoef(signal, 20, signal, 20, nullptr), -1.0);
    ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(10, 20);
    float lags[39];
    EXPECT_EQ(ORVA_XcorrProcExecute(xcorr, signal, signal, lags), -1);
    EXPECT_TRUE(ORVA_XcorrProcDestroy(xcorr));
    EXPECT_TRUE(ORVA_OptimizeFFT(false));
    EXPECT_TRUE(ORVA_OptimizeFFT(true));
    EXPECT_EQ(__FFTW_InitThread, nullptr);
    EXPECT_FALSE(__FFTW_LoadWisdom());
    EXPECT_FALSE(__FFTW_SaveWisdom());
    EXPECT_FALSE(store.exists());
}

} // namespace

TEST(EngineFork, AChildOfAParentAtThePlannerDoesWithoutIt)
{
    support::inOwnProcess([] {
        const Store store;
        store.announce();
        ORVA_InitializeFFT();
        ASSERT_TRUE(__FFTW_WisdomLoaded);
        support::Random random;
        const std::vector<float> input = random.noise(64);
        const std::vector<float> spectrum = spectrumOf(input);
        {
            const Visitor visitor;
            inChild([&] {
                EXPECT_TRUE(support::sameBits(spectrumOf(input), spectrum));
                expectNoPlanner(store);
                EXPECT_TRUE(ORVA_FinalizeFFT());
                EXPECT_FALSE(__FFTW_Initialized);
                EXPECT_FALSE(store.exists());

                KT_MUTEX *const leftBehind = __FFTW_PlanLock;
                ORVA_InitializeFFT(); // brings nothing back
                EXPECT_NE(__FFTW_PlanLock, leftBehind);
                expectNoPlanner(store);
                inChild([&] { expectNoPlanner(store); });
                EXPECT_TRUE(ORVA_FinalizeFFT());
                EXPECT_FALSE(store.exists());
            });
        }
        // The parent has lost nothing.
        EXPECT_TRUE(ORVA_FFTProcDestroy(ORVA_FFTProcCreate(64)));
        ORVA_FinalizeFFT();
        EXPECT_TRUE(store.exists());
    });
}

TEST(EngineFork, AChildWithoutThePlannerDestroysProcessors)
{
    support::inOwnProcess([] {
        ORVA_InitializeFFT();
        const auto [fft, xcorr, fmclt] = processors();
        const Visitor visitor;
        inChild([=] {
            EXPECT_TRUE(ORVA_FFTProcDestroy(fft));
            EXPECT_TRUE(ORVA_XcorrProcDestroy(xcorr));
            EXPECT_EQ(ORVA_FMCLTProcDestroy(fmclt), 1);
        });
    });
}

TEST(EngineFork, AChildOfAParentWhoseThreadsAreElsewherePlansAndSaves)
{
    support::inOwnProcess([] {
        const Store store;
        store.announce();
        ORVA_InitializeFFT();
        {
            const Visitor visitor;
        }
        inChild([&] {
            inChild([] { EXPECT_TRUE(ORVA_FFTProcDestroy(ORVA_FFTProcCreate(64))); });
            EXPECT_TRUE(ORVA_FFTProcDestroy(ORVA_FFTProcCreate(64)));
            ORVA_FinalizeFFT();
        });
        EXPECT_TRUE(store.exists());
        ORVA_FinalizeFFT();
    });
}
