// Threads and sleeps among signals.
#include <kett/KTthread.h>
#include <kett/KTutils.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

#include <pthread.h>

namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

} // namespace

TEST(UtilsSleep, IsNeitherShortenedNorStretchedBySignals)
{
    struct sigaction doNothing = {};
    doNothing.sa_handler = [](int) {};
    sigaction(SIGUSR1, &doNothing, nullptr);
    std::atomic<bool> isOver = false;
    Clock::duration slept{};
    std::thread sleeper([&] {
        const auto start = Clock::now();
        KTUTILS_sleep_msec(100);
        slept = Clock::now() - start;
        isOver = true;
    });
    for (int i = 0; i < 5000 && !isOver; ++i) {
        std::this_thread::sleep_for(milliseconds(1));
        pthread_kill(sleeper.native_handle(), SIGUSR1);
    }
    EXPECT_TRUE(isOver);
    sleeper.join();
    EXPECT_GE(slept, milliseconds(100));
}

TEST(Thread, BlocksAllSignalsAndItsCreatorKeepsItsOwnMask)
{
    static sigset_t mask;
    sigset_t own, before, after, all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
    pthread_sigmask(SIG_SETMASK, nullptr, &all); // all that can be blocked here
    sigemptyset(&own);
    sigaddset(&own, SIGUSR2);
    pthread_sigmask(SIG_SETMASK, &own, nullptr);
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    KT_THREAD *const thread = KTTHREAD_AddThread(
        [](void *) { return static_cast<int32_t>(pthread_sigmask(SIG_SETMASK, nullptr, &mask)); }, nullptr,
        0);
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    KTTHREAD_JoinThreadEx(thread, 0);
    for (const int signal : {SIGHUP, SIGTERM, SIGPIPE, SIGUSR1})
        EXPECT_EQ(sigismember(&all, signal), 1) << signal;
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        EXPECT_EQ(sigismember(&after, signal), sigismember(&before, signal)) << signal;
        EXPECT_EQ(sigismember(&mask, signal), sigismember(&all, signal)) << signal;
    }
}
