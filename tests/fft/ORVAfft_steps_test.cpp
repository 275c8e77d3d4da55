// The order of the steps in which the engine starts, loads, plans, saves and stops, seen from the foundation
// that it calls: what it asks, under which lock, and how often.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_recorder.h"
#include "fft/ORVAfft_store.h"
#include "support/process.h"

using namespace orva;

using namespace recorder;
using support::inOwnProcess;

namespace
{

Calls loadOf(const std::string &size)
{
    return {"lock", folder,         use,     "exists " + path, "open r " + path,
            "size", "read " + size, "close", "unlock"};
}

} // namespace

TEST(EngineSteps, AStartMakesTheLockAndLoadsUnderIt)
{
    inOwnProcess([] {
        EXPECT_TRUE(ORVA_InitializeFFT());
        expectCalls(Calls{"make lock", "lock", folder, "unlock"});
        EXPECT_TRUE(ORVA_InitializeFFT());
        expectCalls(Calls{});
    });
}

TEST(EngineSteps, ALoadStopsWhereItFindsNothing)
{
    inOwnProcess([] {
        EXPECT_FALSE(__FFTW_LoadWisdom());
        expectCalls(Calls{"lock", folder, "unlock"});
        announceFolder();
        answers.useWisdom = false;
        EXPECT_FALSE(__FFTW_LoadWisdom());
        expectCalls(Calls{"lock", folder, use, "unlock"});
        EXPECT_FALSE(__FFTW_WisdomLoaded);
        answers.useWisdom = true;
        EXPECT_FALSE(__FFTW_LoadWisdom());
        expectCalls(missingLoad);
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        EXPECT_FALSE(__FFTW_LoadWisdom());
        expectCalls(doneLoad);
    });
}

TEST(EngineSteps, ALoadReadsTheWholeStoreUnderTheLock)
{
    inOwnProcess([] {
        announceFolder();
        answers.fileExists = true;
        answers.content = store::wisdomOf({16});
        EXPECT_TRUE(__FFTW_LoadWisdom());
        expectCalls(loadOf(std::to_string(answers.content.size())));
        EXPECT_EQ(store::wisdom(), answers.content);
    });
}

TEST(EngineSteps, AStoreThatDoesNotOpenLoadsAsEmpty)
{
    inOwnProcess([] {
        announceFolder();
        answers.fileExists = true;
        answers.opensToRead = false;
        EXPECT_TRUE(__FFTW_LoadWisdom());
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        expectCalls(Calls{"lock", folder, use, "exists " + path, "open r " + path, "size", "read 0",
                          "close nothing", "unlock"});
    });
}

// Neither is memory asked for such a size, nor is anything read or left open.
TEST(EngineSteps, ASizeThatDoesNotFitReadsNothing)
{
    for (const int64_t size : {int64_t{-1}, INT64_MIN, int64_t{INT32_MIN}, (int64_t{64} << 20) + 1,
                               int64_t{INT32_MAX}, int64_t{1} << 32, INT64_MAX})
        inOwnProcess([size] {
            announceFolder();
            answers.fileExists = true;
            answers.content = store::wisdomOf({16});
            answers.fileSize = [size] { return size; };
            const std::string known = store::wisdom();
            EXPECT_TRUE(__FFTW_LoadWisdom());
            EXPECT_TRUE(__FFTW_WisdomLoaded);
            EXPECT_EQ(store::wisdom(), known);
            const Calls opened = {"lock", folder, use, "exists " + path, "open r " + path, "size", "close"};
            expectCalls(opened + Calls{"unlock"});
            EXPECT_TRUE(__FFTW_SaveWisdom());
            expectCalls(opened +
                        Calls{"open w " + path, "write " + std::to_string(known.size()), "close", "unlock"});
        });
}

// A store cut short between the question for its size and the reading.
TEST(EngineSteps, AShortReadIsACorruptStore)
{
    inOwnProcess([] {
        announceFolder();
        answers.fileExists = true;
        const std::string whole = store::wisdomOf({16});
        answers.content = whole.substr(0, whole.size() / 2);
        answers.fileSize = [size = whole.size()] { return static_cast<int64_t>(size); };
        const std::string known = store::wisdom();
        EXPECT_TRUE(__FFTW_LoadWisdom());
        EXPECT_EQ(store::wisdom(), known);
    });
}

TEST(EngineSteps, APlanTakesTheLockForTheLoadAndThenForItself)
{
    inOwnProcess([] {
        ORVA_FFT *fft = __FFTW_CreatePlan(16, false);
        expectCalls(Calls{"lock", folder, "unlock", "lock", "unlock"});
        ORVA_FFTProcDestroy(fft);
        announceFolder();
        takeCalls();
        fft = __FFTW_CreatePlan(16, true);
        expectCalls(missingLoad + Calls{"lock", "unlock"});
        ORVA_FFTProcDestroy(fft);
    });
}

TEST(EngineSteps, ASaveComparesAndWritesUnderTheLock)
{
    inOwnProcess([] {
        store::learn(16);
        const std::string length = std::to_string(store::wisdom().size());
        EXPECT_FALSE(__FFTW_SaveWisdom());
        expectCalls(Calls{"lock", folder, "unlock"});

        announceFolder();
        answers.useWisdom = false;
        EXPECT_FALSE(__FFTW_SaveWisdom());
        expectCalls(Calls{"lock", folder, use, "unlock"});

        answers.useWisdom = true;
        answers.opensToWrite = false;
        EXPECT_FALSE(__FFTW_SaveWisdom());
        expectCalls(Calls{"lock", folder, use, "exists " + path, "open w " + path, "unlock"});

        answers.opensToWrite = true;
        EXPECT_TRUE(__FFTW_SaveWisdom());
        expectCalls(Calls{"lock", folder, use, "exists " + path, "open w " + path, "write " + length, "close",
                          "unlock"});
        EXPECT_EQ(answers.content, store::wisdom());

        answers.fileExists = true;
        EXPECT_TRUE(__FFTW_SaveWisdom());
        expectCalls(loadOf(length));

        answers.content.back() = 'x';
        EXPECT_TRUE(__FFTW_SaveWisdom());
        Calls rewriting = loadOf(length);
        rewriting.pop_back();
        expectCalls(rewriting + Calls{"open w " + path, "write " + length, "close", "unlock"});

        answers.opensToRead = false;
        EXPECT_TRUE(__FFTW_SaveWisdom());
        expectCalls(Calls{"lock", folder, use, "exists " + path, "open r " + path, "open w " + path,
                          "write " + length, "close", "unlock"});
    });
}

TEST(EngineSteps, AStopJoinsWithoutTheLockAndSavesOnlyAfterALoad)
{
    inOwnProcess([] {
        ORVA_InitializeFFT();
        takeCalls();
        ORVA_FinalizeFFT();
        expectCalls(Calls{"lock", "unlock", "destroy lock"});
        KT_MUTEX *const destroyed = __FFTW_PlanLock;

        ORVA_InitializeFFT();
        expectCalls(Calls{"make lock", "lock", folder, "unlock"});
        EXPECT_NE(__FFTW_PlanLock, destroyed);
        ORVA_OptimizeFFT(false);
        takeCalls();
        answers.duringJoin = [] { __FFTW_WisdomLoaded = true; }; // by the preparation, at the last moment
        ORVA_FinalizeFFT();
        expectCalls(Calls{"lock", "unlock", "join", "lock", folder, "unlock", "destroy lock"});
    });
}
