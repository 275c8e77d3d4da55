// The order of the engine's steps, seen from the foundation that it calls: what it asks, under which lock,
// and how often.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_recorder.h"
#include "fft/ORVAfft_store.h"
#include "support/process.h"

#include <gtest/gtest.h>
#include <source_location>

using recorder::answers;
using recorder::takeCalls;
using support::inOwnProcess;

namespace
{

using Calls = std::vector<std::string>;

const std::string folder = "ask KT_DATA_PATH";
const std::string use = "setting orva.fftw.use_wisdom=[1]";
const std::string prepare = "setting orva.fftw.prepare_plans=[0]";
const std::string longest = "setting orva.fftw.max_plan_len=[4096]";
const std::string path = "/data/ruko.optimization";

Calls operator+(Calls first, const Calls &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Calls times(int count, const Calls &calls)
{
    Calls all;
    for (; count > 0; --count)
        all = all + calls;
    return all;
}

void announceFolder()
{
    answers.folder = [] { return "/data"; };
}

void expectCalls(const Calls &expected, std::source_location at = std::source_location::current())
{
    const testing::ScopedTrace where(at.file_name(), static_cast<int>(at.line()), "expected here");
    EXPECT_EQ(recorder::takeCalls(), expected);
}

const Calls doneLoad = {"lock", "unlock"};
const Calls missingLoad = {"lock", folder, use, "exists " + path, "unlock"};

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
    for (const int64_t size :
         {int64_t{-1}, INT64_MIN, int64_t{INT32_MIN}, int64_t{INT32_MAX}, int64_t{1} << 32, INT64_MAX})
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

        ORVA_InitializeFFT();
        ORVA_OptimizeFFT(false);
        takeCalls();
        answers.duringJoin = [] { __FFTW_WisdomLoaded = true; }; // by the preparation, at the last moment
        ORVA_FinalizeFFT();
        expectCalls(Calls{"lock", "unlock", "join", "lock", folder, "unlock", "destroy lock"});
    });
}

TEST(OptimizeSteps, WithoutWaitingAStoredThreadStartsNothing)
{
    inOwnProcess([] {
        EXPECT_TRUE(ORVA_OptimizeFFT(false));
        expectCalls(Calls{"lock", "start thread", "unlock"});
        KT_THREAD *const thread = __FFTW_InitThread;
        EXPECT_NE(thread, nullptr);
        EXPECT_TRUE(ORVA_OptimizeFFT(false));
        expectCalls(Calls{"lock", "unlock"});
        EXPECT_EQ(__FFTW_InitThread, thread);
    });
}

TEST(OptimizeSteps, WaitingCollectsTheThreadAndTheNextCallStartsAnew)
{
    inOwnProcess([] {
        ORVA_OptimizeFFT(false);
        takeCalls();
        EXPECT_TRUE(ORVA_OptimizeFFT(true));
        expectCalls(Calls{"lock", "unlock", "join", "lock", "unlock"});
        EXPECT_EQ(__FFTW_InitThread, nullptr);
        EXPECT_TRUE(ORVA_OptimizeFFT(true));
        expectCalls(Calls{"lock", "start thread", "unlock", "join", "lock", "unlock"});
        EXPECT_EQ(__FFTW_InitThread, nullptr);
    });
}

TEST(OptimizeSteps, AThreadThatDoesNotStartIsTriedAgain)
{
    inOwnProcess([] {
        answers.threadStarts = false;
        for (const bool wait : {false, true}) {
            EXPECT_TRUE(ORVA_OptimizeFFT(wait));
            expectCalls(Calls{"lock", "start thread", "unlock"});
            EXPECT_EQ(__FFTW_InitThread, nullptr);
        }
        answers.threadStarts = true;
        EXPECT_TRUE(ORVA_OptimizeFFT(false));
        EXPECT_NE(__FFTW_InitThread, nullptr);
    });
}

// Another call that waited has collected the thread meanwhile, and one more has started the next.
TEST(OptimizeSteps, AThreadStartedSinceIsNotForgotten)
{
    inOwnProcess([] {
        ORVA_OptimizeFFT(false);
        KT_THREAD *next = nullptr;
        answers.duringJoin = [&next] {
            __FFTW_InitThread = nullptr;
            ORVA_OptimizeFFT(false);
            next = __FFTW_InitThread;
        };
        EXPECT_TRUE(ORVA_OptimizeFFT(true));
        EXPECT_NE(next, nullptr);
        EXPECT_EQ(__FFTW_InitThread, next);
    });
}

TEST(PreparationSteps, SixSleepsAreAllItWaitsForTheFolder)
{
    inOwnProcess([] {
        EXPECT_EQ(__InitializeFFTWPlans(nullptr), 0);
        expectCalls(times(6, {"sleep 50", folder}) +
                    Calls{folder, "warning -1 __InitializeFFTWPlans: KT_DATA_PATH not set!"});
        EXPECT_FALSE(__FFTW_WisdomLoaded);
    });
}

TEST(PreparationSteps, EndsTheWaitAsSoonAsTheFolderIsThere)
{
    for (int sleeps = 1; sleeps <= 6; ++sleeps)
        inOwnProcess([sleeps] {
            answers.folder = [left = sleeps]() mutable { return --left > 0 ? nullptr : "/data"; };
            EXPECT_EQ(__InitializeFFTWPlans(nullptr), 1);
            expectCalls(times(sleeps, {"sleep 50", folder}) + Calls{folder} + missingLoad + Calls{prepare});
        });
}

TEST(PreparationSteps, AsksTheLongestLengthAnewForEveryLength)
{
    inOwnProcess([] {
        announceFolder();
        answers.preparePlans = true;
        answers.maxPlanLength = [] { return 15; };
        EXPECT_EQ(__InitializeFFTWPlans(nullptr), 1);
        const std::string length = std::to_string(store::wisdom().size());
        expectCalls(Calls({"sleep 50", folder, folder}) + missingLoad + Calls{prepare} +
                    times(11, {longest}) +
                    Calls{"lock", folder, use, "exists " + path, "open w " + path, "write " + length, "close",
                          "unlock"});
    });
}

TEST(PreparationSteps, EachLengthIsPlannedBothWaysAndDestroyedUnderTheLock)
{
    inOwnProcess([] {
        announceFolder();
        answers.preparePlans = true;
        answers.maxPlanLength = [calls = 0]() mutable {
            return ++calls == 3 ? 64 : 0;
        }; // the third length alone
        EXPECT_EQ(__InitializeFFTWPlans(nullptr), 1);
        const std::string length = std::to_string(store::wisdom().size());
        const Calls planned = doneLoad + Calls{"lock", "unlock"} + Calls{"lock", "unlock"};
        expectCalls(Calls({"sleep 50", folder, folder}) + missingLoad + Calls{prepare} + times(3, {longest}) +
                    planned + planned + times(8, {longest}) +
                    Calls{"lock", folder, use, "exists " + path, "open w " + path, "write " + length, "close",
                          "unlock"});
        EXPECT_EQ(answers.content, store::wisdomOf({64}));
    });
}

// The flag is looked at behind each length, planned or skipped.
TEST(PreparationSteps, AStopEndsItBehindTheLengthAndSavesWhatIsThere)
{
    struct Case {
        int stopAt; // set while the n-th length is under way
        int64_t longest;
        std::string kept;
    };
    const Case cases[] = {
        {1, 16384, store::wisdomOf({16})},
        {4, 16384, store::wisdomOf({16, 32, 64, 128})},
        {3, 32, store::wisdomOf({16, 32})},
        {1, 8, store::wisdomOf({})},
    };
    for (const Case &c : cases)
        inOwnProcess([&c] {
            announceFolder();
            answers.preparePlans = true;
            int asked = 0;
            answers.maxPlanLength = [&] {
                if (++asked == c.stopAt)
                    __FFTW_StopOptimization = true;
                return c.longest;
            };
            EXPECT_EQ(__InitializeFFTWPlans(nullptr), 1);
            EXPECT_EQ(asked, c.stopAt);
            EXPECT_EQ(answers.content, c.kept);
        });
}
