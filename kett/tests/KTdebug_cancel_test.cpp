// The log in a thread that is cancelled.
#include "KTdebug_pipe.h"

#include <kett/KTdebug.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include <pthread.h>
#include <unistd.h>

// It is cancelled as soon as it has left the log, whose lock it gives back.
TEST(DebugDefaultSink, ACancelledThreadKeepsNoLock)
{
    const FullPipe full;
    alarm(60);
    std::atomic<bool> isLogging = false;
    std::atomic<bool> isBack = false;
    std::thread cancelled([&] {
        isLogging = true;
        KTDEBUG_Log(-1, "from a thread that is cancelled");
        isBack = true;
        pthread_testcancel();
        ADD_FAILURE() << "cancelled before";
    });
    while (!isLogging)
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    pthread_cancel(cancelled.native_handle());
    full.taken();
    cancelled.join();
    EXPECT_TRUE(isBack);
    EXPECT_EQ(full.taken(), "from a thread that is cancelled");
    KTDEBUG_Log(-1, "from another");
    EXPECT_EQ(full.taken(), "from another");
    alarm(0);
}
