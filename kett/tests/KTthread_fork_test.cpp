// A child of fork, which has the state of libkett in which its parent's threads were caught, but none of those threads.
#include "support/process.h"

#include <kett/KTsettings.h>
#include <kett/KTthread.h>
#include <kett/KTutils.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace
{

// A thread that repeats a step until it is told to end.
struct Runner {
    void (*step)();
    std::atomic<bool> hasStarted = false;
    std::atomic<bool> isToEnd = false;
    KT_THREAD *thread;

    explicit Runner(void (*repeated)()) : step(repeated), thread(KTTHREAD_AddThread(run, this, 0))
    {
        while (!hasStarted)
            std::this_thread::yield();
    }

    ~Runner()
    {
        isToEnd = true;
        EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, 0), 1);
    }

    static int32_t run(void *argument)
    {
        auto *runner = static_cast<Runner *>(argument);
        while (!runner->isToEnd) {
            runner->step();
            runner->hasStarted = true;
        }
        return 0;
    }
};

// A child that hangs, in the body or at its end, is ended by a signal.
void inChild(const std::function<void()> &body)
{
    support::inOwnProcess([&] {
        alarm(60);
        body();
    });
}

int32_t sleepABit(void *)
{
    KTUTILS_sleep_msec(20);
    return 0;
}

} // namespace

TEST(ThreadFork, AChildDoesNotWaitForAThreadOfItsParent)
{
    const Runner runner([] { std::this_thread::yield(); });
    inChild([&] {
        EXPECT_EQ(KTTHREAD_JoinThreadEx(runner.thread, 0), 0);
        EXPECT_EQ(KTTHREAD_JoinThreadEx(runner.thread, 0), 0);
    });
}

TEST(ThreadFork, AThreadThatHadEndedBeforeIsJoined)
{
    KT_THREAD *const thread = KTTHREAD_AddThread(sleepABit, nullptr, 0);
    EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, 0), 1);
    inChild([&] { EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, 0), 1); });
}

TEST(ThreadFork, AChildWaitsForItsOwnThreads)
{
    inChild([] {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(KTTHREAD_JoinThreadEx(KTTHREAD_AddThread(sleepABit, nullptr, 0), 0), 1);
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
    });
}

// At each fork the thread is likely to hold the lock of the settings, which the child then holds for ever.
TEST(ThreadFork, AChildEndsWhateverAThreadOfItsParentWasCaughtAt)
{
    const Runner runner([] { KTSETTINGS_GetIntEx(nullptr, "kett.mem.display=[0]"); });
    for (int round = 0; round < 30 && !testing::Test::HasFailure(); ++round)
        inChild([] {});
}
