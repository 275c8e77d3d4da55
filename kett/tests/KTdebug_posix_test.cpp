// The log where a signal breaks off a write, and for a format that is refused.
#include "KTdebug_pipe.h"
#include "support/log.h"

#include <kett/KTdebug.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

#include <pthread.h>
#include <unistd.h>

using support::Message;

// The pipe is full, so the write waits, and every signal breaks it off.
TEST(DebugDefaultSink, WritesAgainAfterASignal)
{
    struct sigaction doNothing = {};
    doNothing.sa_handler = [](int) {};
    sigaction(SIGUSR1, &doNothing, nullptr); // without SA_RESTART
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int before = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    const std::string filling(65536, '.');
    ASSERT_EQ(write(STDERR_FILENO, filling.data(), filling.size()), 65536);

    std::atomic<bool> isWritten = false;
    std::thread writer([&] {
        KTDEBUG_Log(-1, "after the signal");
        isWritten = true;
    });
    for (int i = 0; i < 20; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        pthread_kill(writer.native_handle(), SIGUSR1);
    }
    EXPECT_FALSE(isWritten);
    std::string all;
    char room[4096];
    while (all.size() < filling.size()) {
        const ssize_t size = read(ends[0], room, sizeof room);
        ASSERT_GT(size, 0);
        all.append(room, static_cast<size_t>(size));
    }
    writer.join();
    dup2(before, STDERR_FILENO);
    close(before);
    close(ends[1]);
    for (ssize_t size; (size = read(ends[0], room, sizeof room)) > 0;)
        all.append(room, static_cast<size_t>(size));
    close(ends[0]);
    EXPECT_EQ(all, filling + "after the signal");
}

TEST(DebugDefaultSink, AClosedPipeDoesNotEndTheProcess)
{
    FullPipe full;
    close(full.ends[0]);
    full.ends[0] = dup(STDIN_FILENO);
    sigset_t pending;
    for (int i = 0; i < 3; ++i) {
        KTDEBUG_Log(-1, "nobody reads this");
        sigpending(&pending);
        EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    }

    // One that somebody else has raised stays.
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
    raise(SIGPIPE);
    KTDEBUG_Log(-1, "nobody reads this either");
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 1);
    int taken = 0;
    sigwait(&pipeSignal, &taken);
    EXPECT_EQ(taken, SIGPIPE);
}

TEST(DebugDefaultSink, AFullPipeHoldsUpOneMessageForASecondAndNoneForEver)
{
    const FullPipe full;
    const auto start = std::chrono::steady_clock::now();
    const auto seconds = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    alarm(60);
    KTDEBUG_Log(-1, "lost");
    EXPECT_GE(seconds(), 0.9);
    for (int i = 0; i < 1000; ++i)
        KTDEBUG_Log(-1, "lost");
    EXPECT_LT(seconds(), 10.0);
    EXPECT_EQ(full.taken(), std::string(65536, '.'));
    KTDEBUG_Log(-1, "there is room again");
    EXPECT_EQ(full.taken(), "there is room again");
    KTDEBUG_Log(-1, "%s", std::string(10000, 'x').c_str());
    EXPECT_EQ(full.taken(), std::string(10000, 'x'));
    KTDEBUG_Log(-1, "%s", std::string(100000, 'x').c_str()); // more than there is room for
    EXPECT_LT(full.taken().size(), 100000u);
    alarm(0);
}

TEST(DebugMessages, ARefusedFormatIsWrittenAsItStands)
{
    support::Log log;
    KTDEBUG_Log(-1, "one and %ls\n", L"\x4e2d"); // no text in the C locale
    EXPECT_EQ(log.messages, (std::vector{Message{0, -1, "one and %ls\n"}}));
}
