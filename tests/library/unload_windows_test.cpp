// Unloading and the end of the process on Windows, where neither may wait for a thread: a preparation keeps the library
// loaded until it has ended, and the end of the process ends it.
#include "host.h"
#include "support/process.h"

#include <algorithm>
#include <thread>

using namespace host;
using std::chrono::milliseconds;

namespace
{

bool bothGo()
{
    return goes("liborva") && goes("libkett");
}

bool holdsPlans(const std::string &wisdom)
{
    return wisdom.starts_with("(fftw-") && std::count(wisdom.begin(), wisdom.end(), '\n') > 2;
}

} // namespace

TEST(UnloadWindows, DuringAPreparationReturnsAtOnceAndTheModuleGoesAfterIt)
{
    const DataFolder folder;
    for (int round = 0; round < 3; ++round) {
        std::filesystem::remove(folder.store());
        Loaded library;
        startPreparation(library);
        std::this_thread::sleep_for(untilThePreparationIsAtWork);
        library.unload();
        EXPECT_TRUE(bothGo());
        EXPECT_TRUE(holdsPlans(support::readFile(folder.store())));
    }
}

TEST(UnloadWindows, RightAfterTheStartOfAPreparationIsSafe)
{
    const DataFolder folder;
    for (int round = 0; round < 5; ++round) {
        Loaded library;
        startPreparation(library);
        library.unload();
    }
    EXPECT_TRUE(bothGo());
    EXPECT_TRUE(folder.hasStore());
}

TEST(UnloadWindows, WithAPreparationThatStillWaitsForTheFolderIsSafe)
{
    Loaded library;
    startPreparation(library);
    library.unload();
    EXPECT_TRUE(bothGo());
}

TEST(UnloadWindows, AfterFinalizeByTheHostLeavesNothingToWaitFor)
{
    const DataFolder folder;
    Loaded library;
    startPreparation(library);
    std::this_thread::sleep_for(untilThePreparationIsAtWork);
    library.call<void>("ORVA_Finalize"); // stops the preparation, waits for it and saves
    EXPECT_TRUE(folder.hasStore());
    EXPECT_TRUE(std::filesystem::remove(folder.store()));
    library.unload();
    EXPECT_TRUE(bothGo());
    EXPECT_FALSE(folder.hasStore()) << "a second save";
}

TEST(ProcessEndWindows, WithoutAPreparationWritesTheStore)
{
    const support::Folder folder;
    if (support::variable("KT_DATA_PATH").empty()) // else this is the child, which has that of its parent
        support::setVariable("KT_DATA_PATH", folder.path.string());
    support::inOwnProcess([] {
        new Loaded; // never unloaded by the host
    });
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"ruko.optimization"});
}

// Wherever it is: asleep, at the planner, or at the store. The test would hang, or run into its time limit.
TEST(ProcessEndWindows, DuringAPreparationDoesNotHang)
{
    const DataFolder folder;
    for (const int64_t time : {0, 20, 50, 51, 52, 55, 60, 70, 100}) {
        support::writeFile(folder / "time", std::to_string(time));
        support::inOwnProcess([] {
            const std::string path = support::variable("KT_DATA_PATH");
            const auto *library = new Loaded;
            startPreparation(*library);
            std::this_thread::sleep_for(milliseconds(std::stoll(support::readFile(path + "\\time"))));
        });
        EXPECT_LE(folder.entries().size(), 3u) << "more than the time, the store, and a save broken off";
    }
}

// Threads of the host are killed at the planner, with its lock in their hands.
TEST(ProcessEndWindows, WithThreadsAtThePlannerDoesNotHang)
{
    const DataFolder folder;
    for (int round = 0; round < 5; ++round)
        support::inOwnProcess([] {
            const auto *library = new Loaded;
            for (int i = 0; i < 2; ++i)
                std::thread([library] {
                    for (int32_t length = 64;; length = length % 4096 + 2)
                        library->call<bool>("ORVA_FFTProcDestroy",
                                            library->call<void *>("ORVA_FFTProcCreate", length));
                }).detach();
            std::this_thread::sleep_for(milliseconds(50));
        });
}
