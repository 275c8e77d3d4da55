// Children forked while other threads are inside the library, which the child has not: it must neither wait for them nor
// rely on what they were changing. The library is loaded as by a host, so that its end is the one of a process.
#include "host.h"
#include "support/process.h"

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include <spawn.h>

using namespace host;

namespace
{

constexpr int rounds = 30;

// Threads of the host that create and destroy processors without pause, so that at nearly every moment one of them is
// inside FFTW's planner.
class Planners
{
public:
    explicit Planners(const Loaded &library)
    {
        for (std::atomic<bool> &hasPlanned : havePlanned)
            threads.emplace_back([&] {
                while (!isToEnd) {
                    auto *const fft = library.call<void *>("ORVA_FFTProcCreate", int32_t{1024});
                    library.call<bool>("ORVA_FFTProcDestroy", fft);
                    hasPlanned = true;
                }
            });
        for (const std::atomic<bool> &hasPlanned : havePlanned)
            while (!hasPlanned)
                std::this_thread::yield();
    }

    ~Planners()
    {
        isToEnd = true;
        for (std::thread &thread : threads)
            thread.join();
    }

private:
    std::array<std::atomic<bool>, 4> havePlanned = {};
    std::atomic<bool> isToEnd = false;
    std::vector<std::thread> threads;
};

// Children that do what is told and then end by exit(). One that hangs is ended by a signal.
void inChildren(const std::function<void()> &body)
{
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round)
        support::inOwnProcess([&] {
            alarm(30);
            body();
        });
}

bool canPlan(const Loaded &library)
{
    auto *const fft = library.call<void *>("ORVA_FFTProcCreate", int32_t{64});
    return library.call<bool>("ORVA_FFTProcDestroy", fft);
}

pid_t startTrue()
{
    const pid_t child = vfork();
    if (child == 0) {
        execlp("true", "true", nullptr);
        _exit(1);
    }
    return child;
}

pid_t spawnTrue()
{
    char name[] = "true";
    char *const arguments[] = {name, nullptr};
    pid_t child = 0;
    EXPECT_EQ(posix_spawnp(&child, name, nullptr, nullptr, arguments, environ), 0);
    return child;
}

void expectSuccess(pid_t child)
{
    int status = 1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

} // namespace

TEST(Fork, AChildEndsWhileThreadsOfItsParentPlan)
{
    const DataFolder folder;
    const Loaded library;
    const Planners planners(library);
    inChildren([] {});
}

TEST(Fork, AChildTakesTheLibraryDownWhileThreadsOfItsParentPlan)
{
    const DataFolder folder;
    const Loaded library;
    const Planners planners(library);
    inChildren([&] { library.call<void>("ORVA_Finalize"); });
    inChildren([&] {
        library.call<bool>("ORVA_FinalizeFFT");
        library.call<bool>("ORVA_InitializeFFT");
    });
}

TEST(Fork, AChildUnloadsTheLibraryWhileThreadsOfItsParentPlan)
{
    const DataFolder folder;
    Loaded library;
    const Planners planners(library);
    inChildren([&] {
        library.unload();
        EXPECT_FALSE(isMapped("liborva.so"));
        EXPECT_FALSE(isMapped("libkett.so"));
    });
}

// Whether the planner was caught or not: the child plans, or is refused.
TEST(Fork, AChildMakesAndDestroysProcessorsWhileThreadsOfItsParentPlan)
{
    const DataFolder folder;
    const Loaded library;
    const Planners planners(library);
    inChildren([&] {
        for (int i = 0; i < 3; ++i)
            canPlan(library);
    });
}

TEST(Fork, AGrandchildEndsToo)
{
    const DataFolder folder;
    const Loaded library;
    const Planners planners(library);
    inChildren([&] { support::inOwnProcess([&] { canPlan(library); }); });
}

TEST(Fork, AChildDoesNotWaitForAPreparationAtWork)
{
    const DataFolder folder;
    const Loaded library;
    startPreparation(library);
    std::this_thread::sleep_for(untilThePreparationIsAtWork);
    inChildren([] {});
}

TEST(Fork, AChildOfAHostWhoseThreadsAreElsewherePlansAndSaves)
{
    const DataFolder folder;
    const Loaded library;
    {
        const Planners planners(library);
    }
    inChildren([&] {
        EXPECT_TRUE(canPlan(library));
        std::filesystem::remove(folder.store());
    });
    EXPECT_TRUE(folder.hasStore());
}

// Both run in the memory of the parent, in which nobody has gone.
TEST(Fork, ProgramsThatAreStartedLeaveTheParentItsPlanner)
{
    const Loaded library;
    const Planners planners(library);
    for (int round = 0; round < rounds; ++round) {
        expectSuccess(startTrue());
        expectSuccess(spawnTrue());
        EXPECT_TRUE(canPlan(library));
    }
}

TEST(Fork, AnUnloadedLibraryTakesNoPartInIt)
{
    for (int round = 0; round < 100; ++round)
        useOnce();
    EXPECT_FALSE(isMapped("liborva.so"));
    EXPECT_FALSE(isMapped("libkett.so"));
    inChildren([] {});
}
