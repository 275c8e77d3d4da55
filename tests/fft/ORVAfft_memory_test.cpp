// The engine when memory is out, at each of its allocations in turn.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_store.h"
#include "support/interposer.h"
#include "support/process.h"

#include <orva/ORVAfmclt.h>
#include <orva/ORVAxcorr.h>

using namespace orva;

using store::Store;
using support::inOwnProcess;

TEST(EngineMemory, APlanThatCannotBeHadIsMissingAndTheLockIsFree)
{
    inOwnProcess([] {
        const Store none;
        ORVA_InitializeFFT();
        ORVA_FFTProcDestroy(__FFTW_CreatePlan(64, false)); // so that FFTW itself is set up
        for (const bool inverse : {false, true})
            for (const int n : {1, 2, 3, 4}) { // record, samples, bins, what FFTW is about to take
                support::failAllocation(static_cast<uint64_t>(n));
                ORVA_FFT *fft = __FFTW_CreatePlan(64, inverse);
                EXPECT_TRUE(support::endFailure());
                EXPECT_EQ(fft, nullptr);
                fft = __FFTW_CreatePlan(64, inverse);
                EXPECT_NE(fft->plan, nullptr);
                ORVA_FFTProcDestroy(fft);
            }
        ORVA_FinalizeFFT();
    });
}

// FFTW itself ends the process where it gets no memory. It is not even asked unless the heap has room for what it takes.
TEST(EngineMemory, AnyAmountThatIsLeftIsEnoughForARefusal)
{
    int refusals = 0;
    int successes = 0;
    for (const int32_t length : {1, 64, 101, 1009, 4096, 10007})
        for (uint64_t left = 0; left < 2'500'000; left += left < 300'000 ? 20'011 : 150'017) {
            SCOPED_TRACE("length " + std::to_string(length) + ", " + std::to_string(left) + " bytes left");
            const support::Folder results;
            inOwnProcess([&] {
                const Store none;
                ORVA_InitializeFFT();
                support::limitHeap(left);
                ORVA_FFT *const forward = ORVA_FFTProcCreate(length);
                ORVA_FFT *const inverse = ORVA_IFFTProcCreate(length);
                ORVA_FMCLT *const fmclt = ORVA_FMCLTProcCreate(length);
                ORVA_XCORR *const xcorr = ORVA_XcorrProcCreate(length, length);
                ORVA_XcorrProcDestroy(xcorr);
                ORVA_FMCLTProcDestroy(fmclt);
                ORVA_FFTProcDestroy(inverse);
                ORVA_FFTProcDestroy(forward);
                support::endLimit();
                support::writeFile(results / (forward != nullptr && fmclt != nullptr ? "all" : "some"), "");
                ORVA_FinalizeFFT();
            });
            successes += std::filesystem::exists(results / "all");
            refusals += std::filesystem::exists(results / "some");
        }
    EXPECT_GT(refusals, 50);
    EXPECT_GT(successes, 20);
}

TEST(EngineMemory, AStoreThatCannotBeReadCountsAsLoaded)
{
    for (const uint64_t n : {1, 2}) // the file's handle, the text
        inOwnProcess([n] {
            const Store store;
            support::writeFile(store.path, store::wisdomOf({16}));
            store.announce();
            const std::string known = store::wisdom();
            support::failAllocation(n);
            EXPECT_TRUE(__FFTW_LoadWisdom());
            EXPECT_TRUE(support::endFailure());
            EXPECT_TRUE(__FFTW_WisdomLoaded);
            EXPECT_EQ(store::wisdom(), known);
        });
}

TEST(EngineMemory, ASaveLeavesTheOldStoreOrTheNewOne)
{
    // FFTW ends the process when it gets none for its printer, the third.
    constexpr uint64_t roomForFFTW = 1, text = 2, oldStore = 4, oldText = 5, newStore = 6;
    for (const uint64_t n : {roomForFFTW, text, oldStore, oldText, newStore})
        inOwnProcess([n] {
            const Store store;
            const std::string before = store::wisdomOf({16});
            support::writeFile(store.path, before);
            store.announce();
            ORVA_InitializeFFT();
            store::plan(48);
            const std::string after = store::wisdom();
            support::failAllocation(n);
            EXPECT_TRUE(ORVA_FinalizeFFT());
            EXPECT_TRUE(support::endFailure());
            EXPECT_EQ(support::readFile(store.path), n == oldStore || n == oldText ? after : before);
            EXPECT_TRUE(store.isTidy());
        });
}

TEST(EngineMemory, AStartNeverFails)
{
    bool happened = true;
    for (uint64_t n = 1; happened && n < 50; ++n) {
        const Store none;
        support::failAllocation(n);
        EXPECT_TRUE(ORVA_InitializeFFT());
        happened = support::endFailure();
        EXPECT_TRUE(__FFTW_Initialized);
        ORVA_FFT *fft = __FFTW_CreatePlan(16, false);
        EXPECT_NE(fft->plan, nullptr);
        ORVA_FFTProcDestroy(fft);
        EXPECT_TRUE(ORVA_FinalizeFFT());
    }
    EXPECT_FALSE(happened);
}

TEST(EngineMemory, AThreadThatCannotBeHadIsTriedAgain)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        ORVA_InitializeFFT();
        support::failAllocation(1);
        EXPECT_TRUE(ORVA_OptimizeFFT(true));
        EXPECT_TRUE(support::endFailure());
        EXPECT_EQ(__FFTW_InitThread, nullptr);
        EXPECT_TRUE(ORVA_OptimizeFFT(false));
        EXPECT_NE(__FFTW_InitThread, nullptr);
        ORVA_FinalizeFFT();
    });
}
