// The order of the steps of a preparation, seen from the foundation that the engine calls.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_recorder.h"
#include "fft/ORVAfft_store.h"
#include "support/process.h"

using namespace orva;

using namespace recorder;
using support::inOwnProcess;

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

// The flag is looked at after each length, planned or skipped.
TEST(PreparationSteps, AStopEndsItAfterTheLengthAndSavesWhatIsThere)
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
