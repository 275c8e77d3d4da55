#include <kett/KTmutex.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

TEST(Mutex, IsUnlockedAtFirstAndCanBeHeldAgain)
{
    KT_MUTEX *const mutex = MutexInit();
    ASSERT_NE(mutex, nullptr);
    for (int i = 0; i < 3; ++i) {
        MutexLock(mutex);
        MutexUnlock(mutex);
    }
    MutexDestroy(mutex);
}

TEST(Mutex, IsHeldByOneThreadAtATime)
{
    KT_MUTEX *const mutex = MutexInit();
    int64_t sum = 0; // guarded by nothing else
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int k = 0; k < 2000; ++k) {
                MutexLock(mutex);
                ++sum;
                MutexUnlock(mutex);
            }
        });
    for (auto &thread : threads)
        thread.join();
    MutexDestroy(mutex);
    EXPECT_EQ(sum, 8000);
}

TEST(Mutex, BlocksUntilItIsReleased)
{
    KT_MUTEX *const mutex = MutexInit();
    std::atomic<bool> isHeld = false;
    MutexLock(mutex);
    std::thread other([&] {
        MutexLock(mutex);
        isHeld = true;
        MutexUnlock(mutex);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(isHeld);
    MutexUnlock(mutex);
    other.join();
    EXPECT_TRUE(isHeld);
    MutexDestroy(mutex);
}

// One thread holds the mutex and asks for it again as soon as it has released it. Those that wait get it before.
TEST(Mutex, WhoeverWaitsGetsItAtTheNextRelease)
{
    for (const int waiters : {1, 4}) {
        SCOPED_TRACE(waiters);
        KT_MUTEX *const mutex = MutexInit();
        for (int round = 0; round < 5; ++round) {
            std::atomic<int> asking = 0;
            int served = 0; // under the mutex
            MutexLock(mutex);
            std::vector<std::thread> threads;
            for (int i = 0; i < waiters; ++i)
                threads.emplace_back([&] {
                    ++asking;
                    MutexLock(mutex);
                    ++served;
                    MutexUnlock(mutex);
                });
            while (asking < waiters)
                std::this_thread::yield();
            std::this_thread::sleep_for(std::chrono::milliseconds(50)); // until they wait
            for (int release = 1; release <= waiters; ++release) {
                MutexUnlock(mutex);
                MutexLock(mutex);
                EXPECT_GE(served, release);
            }
            MutexUnlock(mutex);
            for (auto &thread : threads)
                thread.join();
        }
        MutexDestroy(mutex);
    }
}

TEST(Mutex, TwoAreIndependent)
{
    KT_MUTEX *const one = MutexInit();
    KT_MUTEX *const two = MutexInit();
    MutexLock(one);
    std::thread([&] {
        MutexLock(two);
        MutexUnlock(two);
    }).join();
    MutexUnlock(one);
    MutexDestroy(one);
    MutexDestroy(two);
}

TEST(Mutex, NullDoesNothing)
{
    MutexLock(nullptr);
    MutexUnlock(nullptr);
    MutexDestroy(nullptr);
}
