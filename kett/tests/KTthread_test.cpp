#include <kett/KTmutex.h>
#include <kett/KTthread.h>
#include <kett/KTutils.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace
{

// Ends some time after its start.
struct Slow {
    int value = 0; // not atomic: the join orders it

    static int32_t body(void *argument)
    {
        KTUTILS_sleep_msec(30);
        static_cast<Slow *>(argument)->value = 42;
        return 7;
    }
};

int32_t nothing(void *)
{
    return 0;
}

void waitFor(const std::atomic<bool> &flag)
{
    while (!flag)
        std::this_thread::yield();
}

} // namespace

TEST(Thread, StartsAtOnceWithItsArgument)
{
    std::atomic<bool> hasStarted = false;
    KT_THREAD *const thread = KTTHREAD_AddThread(
        [](void *argument) {
            *static_cast<std::atomic<bool> *>(argument) = true;
            return int32_t{0};
        },
        &hasStarted, 0);
    ASSERT_NE(thread, nullptr);
    waitFor(hasStarted); // nobody joins it before
    EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, 0), 1);
}

TEST(Thread, TakesANullArgumentAndAnyFlags)
{
    static void *seen = &seen;
    KT_THREAD *const thread = KTTHREAD_AddThread(
        [](void *argument) {
            seen = argument;
            return int32_t{-1};
        },
        nullptr, -1);
    EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, -1), 1);
    EXPECT_EQ(seen, nullptr);
}

TEST(Thread, IsNullWithoutAFunction)
{
    EXPECT_EQ(KTTHREAD_AddThread(nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(KTTHREAD_JoinThreadEx(nullptr, 0), 0);
}

TEST(ThreadJoin, ReturnsOnlyAfterTheEnd)
{
    Slow slow;
    KT_THREAD *const thread = KTTHREAD_AddThread(Slow::body, &slow, 0);
    EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, 0), 1);
    EXPECT_EQ(slow.value, 42);
}

// As a host does it: the mutex goes as soon as its last user has been joined.
TEST(ThreadJoin, AllowsWhatTheThreadUsedToBeDestroyed)
{
    for (int i = 0; i < 100; ++i) {
        KT_MUTEX *const mutex = MutexInit();
        KT_THREAD *const thread = KTTHREAD_AddThread(
            [](void *argument) {
                MutexLock(static_cast<KT_MUTEX *>(argument));
                MutexUnlock(static_cast<KT_MUTEX *>(argument));
                return int32_t{0};
            },
            mutex, 0);
        KTTHREAD_JoinThreadEx(thread, 0);
        MutexDestroy(mutex);
    }
}

TEST(ThreadJoin, WorksLongAfterTheEndAndAgain)
{
    std::atomic<bool> hasRun = false;
    KT_THREAD *const thread = KTTHREAD_AddThread(
        [](void *argument) {
            *static_cast<std::atomic<bool> *>(argument) = true;
            return int32_t{0};
        },
        &hasRun, 0);
    waitFor(hasRun);
    KTUTILS_sleep_msec(20);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, 0), 1);
}

TEST(ThreadJoin, ServesSeveralThreadsAndEachWaitsForTheEnd)
{
    for (int round = 0; round < 10; ++round) {
        Slow slow;
        KT_THREAD *const thread = KTTHREAD_AddThread(Slow::body, &slow, 0);
        std::vector<std::thread> waiting;
        for (int i = 0; i < 4; ++i)
            waiting.emplace_back([&] {
                EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, 0), 1);
                EXPECT_EQ(slow.value, 42);
            });
        for (auto &waiter : waiting)
            waiter.join();
        EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, 0), 1);
    }
}

namespace
{

struct SelfJoining {
    std::atomic<KT_THREAD *> self = nullptr;
    int32_t result = -1;

    static int32_t body(void *argument)
    {
        auto *joining = static_cast<SelfJoining *>(argument);
        while (joining->self == nullptr)
            std::this_thread::yield();
        KTUTILS_sleep_msec(20); // so that the other one waits already
        joining->result = KTTHREAD_JoinThreadEx(joining->self, 0);
        return 0;
    }
};

} // namespace

TEST(ThreadJoin, OfItselfReturnsZeroAtOnce)
{
    SelfJoining joining;
    joining.self = KTTHREAD_AddThread(SelfJoining::body, &joining, 0);
    EXPECT_EQ(KTTHREAD_JoinThreadEx(joining.self, 0), 1);
    EXPECT_EQ(joining.result, 0);
}

// The system gives a new thread the identity of an old one; that must not be taken for a thread joining
// itself.
TEST(ThreadJoin, OfAnOldThreadWorksFromEveryNewOne)
{
    KT_THREAD *const old = KTTHREAD_AddThread(nothing, nullptr, 0);
    EXPECT_EQ(KTTHREAD_JoinThreadEx(old, 0), 1);
    for (int i = 0; i < 20; ++i) {
        static int32_t result;
        result = -1;
        KT_THREAD *const next = KTTHREAD_AddThread(
            [](void *argument) {
                return result = KTTHREAD_JoinThreadEx(static_cast<KT_THREAD *>(argument), 0);
            },
            old, 0);
        EXPECT_EQ(KTTHREAD_JoinThreadEx(next, 0), 1);
        EXPECT_EQ(result, 1);
    }
}

TEST(Thread, ManyRunAtTheSameTime)
{
    std::atomic<int> count = 0;
    std::vector<KT_THREAD *> threads;
    for (int i = 0; i < 50; ++i)
        threads.push_back(KTTHREAD_AddThread(
            [](void *argument) { return static_cast<int32_t>(++*static_cast<std::atomic<int> *>(argument)); },
            &count, 0));
    for (auto *thread : threads)
        EXPECT_EQ(KTTHREAD_JoinThreadEx(thread, 0), 1);
    EXPECT_EQ(count, 50);
}

TEST(Thread, MayStartOthersAndSeveralStartAtOnce)
{
    static std::atomic<int> count;
    count = 0;
    const auto parent = [](void *) {
        KT_THREAD *const child =
            KTTHREAD_AddThread([](void *) { return static_cast<int32_t>(++count); }, nullptr, 0);
        return KTTHREAD_JoinThreadEx(child, 0);
    };
    std::vector<KT_THREAD *> parents;
    for (int i = 0; i < 8; ++i)
        parents.push_back(KTTHREAD_AddThread(parent, nullptr, 0));
    for (auto *thread : parents)
        KTTHREAD_JoinThreadEx(thread, 0);
    EXPECT_EQ(count, 8);
}
