// The preparation on its own thread, with its waits as they are.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_store.h"
#include "support/log.h"
#include "support/process.h"

#include <kett/KTsettings.h>

#include <algorithm>
#include <chrono>
#include <thread>

using namespace orva;

using store::Store;
using support::inOwnProcess;
using support::readFile;

namespace
{

using Clock = std::chrono::steady_clock;

int64_t millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

void switchPreparationOn()
{
    KTSETTINGS_SetEx(nullptr, "orva.fftw.prepare_plans=%d", 1);
}

// What a preparation that was stopped early may have saved: at least its first length.
std::vector<std::string> wisdomOfBeginnings()
{
    std::vector<std::string> texts;
    std::vector<int> lengths;
    for (int length = 16; length <= 4096; length *= 2) {
        lengths.push_back(length);
        texts.push_back(store::wisdomOf(lengths));
    }
    return texts;
}

} // namespace

TEST(Preparation, IsOffByDefault)
{
    inOwnProcess([] {
        const support::Log log;
        const Store store;
        store.announce();
        ORVA_InitializeFFT();
        const std::string before = store::wisdom();
        const auto start = Clock::now();
        EXPECT_TRUE(ORVA_OptimizeFFT(true));
        EXPECT_GE(millisecondsSince(start), 50);
        EXPECT_EQ(__FFTW_InitThread, nullptr);
        EXPECT_EQ(store::wisdom(), before);
        EXPECT_FALSE(store.exists());
        EXPECT_TRUE(log.messages.empty());
        ORVA_FinalizeFFT();
    });
}

TEST(Preparation, PreparesTheLengthsUpToTheLongestAndSavesThem)
{
    struct Case {
        const char *longest; // null leaves the setting out
        std::initializer_list<int> lengths;
    };
    const Case cases[] = {
        {nullptr, {16, 32, 64, 128, 256, 512, 1024, 2048, 4096}},
        {"4096", {16, 32, 64, 128, 256, 512, 1024, 2048, 4096}},
        {"4095", {16, 32, 64, 128, 256, 512, 1024, 2048}},
        {"16384", {16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384}},
        {"5000000000", {16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384}},
        {"16", {16}},
        {"15", {}},
        {"-1", {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.longest != nullptr ? c.longest : "default");
        inOwnProcess([&c] {
            const support::Log log;
            const Store store;
            const std::string expected = store::wisdomOf(c.lengths);
            store.announce();
            switchPreparationOn();
            if (c.longest != nullptr)
                KTSETTINGS_SetEx(nullptr, "orva.fftw.max_plan_len=%s", c.longest);
            ORVA_InitializeFFT();
            EXPECT_TRUE(ORVA_OptimizeFFT(true));
            EXPECT_EQ(readFile(store.path), expected);
            ORVA_FinalizeFFT();
            EXPECT_EQ(readFile(store.path), expected);
            EXPECT_TRUE(store.isTidy());
            EXPECT_TRUE(log.messages.empty());
        });
    }
}

TEST(Preparation, WithTheStoreSwitchedOffStillPrepares)
{
    inOwnProcess([] {
        const Store store;
        const std::string expected = store::wisdomOf({16, 32});
        store.announce();
        switchPreparationOn();
        KTSETTINGS_SetEx(nullptr, "orva.fftw.max_plan_len=%d", 32);
        KTSETTINGS_SetEx(nullptr, "orva.fftw.use_wisdom=%d", 0);
        ORVA_InitializeFFT();
        ORVA_OptimizeFFT(true);
        EXPECT_EQ(store::wisdom(), expected);
        ORVA_FinalizeFFT();
        EXPECT_FALSE(store.exists());
    });
}

TEST(Preparation, WarnsWhenTheFolderNeverComes)
{
    inOwnProcess([] {
        const support::Log log;
        const Store store;
        switchPreparationOn();
        ORVA_InitializeFFT();
        const auto start = Clock::now();
        EXPECT_TRUE(ORVA_OptimizeFFT(true));
        EXPECT_GE(millisecondsSince(start), 300);
        EXPECT_EQ(log.messages,
                  std::vector{support::warning("__InitializeFFTWPlans: KT_DATA_PATH not set!")});
        EXPECT_FALSE(__FFTW_WisdomLoaded);
        ORVA_FinalizeFFT();
        EXPECT_FALSE(store.exists());
    });
}

TEST(Preparation, WaitsForAFolderThatComesLate)
{
    inOwnProcess([] {
        const support::Log log;
        const Store store;
        switchPreparationOn();
        KTSETTINGS_SetEx(nullptr, "orva.fftw.max_plan_len=%d", 16);
        ORVA_InitializeFFT();
        ORVA_OptimizeFFT(false);
        store.announce(); // in the first of the sleeps
        ORVA_OptimizeFFT(true);
        EXPECT_EQ(readFile(store.path), store::wisdomOf({16}));
        EXPECT_TRUE(log.messages.empty());
        ORVA_FinalizeFFT();
    });
}

TEST(Preparation, TwoCallsThatDoNotWaitStartOneThread)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        ORVA_InitializeFFT();
        EXPECT_TRUE(ORVA_OptimizeFFT(false));
        KT_THREAD *const thread = __FFTW_InitThread;
        EXPECT_TRUE(ORVA_OptimizeFFT(false));
        EXPECT_EQ(__FFTW_InitThread, thread);
        std::this_thread::sleep_for(std::chrono::milliseconds(100)); // it has ended long since
        EXPECT_TRUE(ORVA_OptimizeFFT(false));
        EXPECT_EQ(__FFTW_InitThread, thread);
        EXPECT_TRUE(ORVA_OptimizeFFT(true));
        EXPECT_EQ(__FFTW_InitThread, nullptr);
        EXPECT_TRUE(ORVA_OptimizeFFT(false));
        EXPECT_NE(__FFTW_InitThread, nullptr);
        ORVA_FinalizeFFT();
    });
}

TEST(Preparation, AStopWaitsForItsEndAndKeepsWhatIsPreparedSoFar)
{
    inOwnProcess([] {
        const Store store;
        const std::vector<std::string> expected = wisdomOfBeginnings();
        store.announce();
        switchPreparationOn();
        ORVA_InitializeFFT();
        const auto start = Clock::now();
        ORVA_OptimizeFFT(false);
        ORVA_FinalizeFFT();
        EXPECT_GE(millisecondsSince(start), 50);
        const std::string kept = readFile(store.path);
        EXPECT_NE(std::find(expected.begin(), expected.end(), kept), expected.end()) << kept;
        EXPECT_EQ(kept, store::wisdom());
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(store::wisdom(), kept); // nobody plans any more
    });
}

TEST(Preparation, AStopWaitsOutTheSleepsToo)
{
    inOwnProcess([] {
        const support::Log log;
        const Store store;
        ORVA_InitializeFFT();
        const auto start = Clock::now();
        ORVA_OptimizeFFT(false);
        ORVA_FinalizeFFT();
        EXPECT_GE(millisecondsSince(start), 300);
        EXPECT_EQ(log.messages.size(), 1u);
    });
}

TEST(Preparation, AfterARestartItStopsAfterItsFirstLength)
{
    inOwnProcess([] {
        const Store store;
        const std::string expected = store::wisdomOf({16});
        store.announce();
        switchPreparationOn();
        ORVA_InitializeFFT();
        ORVA_FinalizeFFT();
        ORVA_InitializeFFT();
        ORVA_OptimizeFFT(true);
        EXPECT_EQ(readFile(store.path), expected);
        ORVA_FinalizeFFT();
    });
}
