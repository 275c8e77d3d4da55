// A thread for which there is no memory.
#include <kett/KTthread.h>

#include <gtest/gtest.h>

#include <sys/resource.h>

TEST(OutOfMemory, AThreadWithoutRoomForItsStackIsNull)
{
    rlimit before;
    getrlimit(RLIMIT_AS, &before);
    const rlimit none{1, before.rlim_max};
    setrlimit(RLIMIT_AS, &none);
    KT_THREAD *const thread = KTTHREAD_AddThread([](void *) { return int32_t{0}; }, nullptr, 0);
    setrlimit(RLIMIT_AS, &before);
    EXPECT_EQ(thread, nullptr);
}
