// Children forked while threads of the host use libkett. A child has none of these threads, but all of libkett works in
// it, and it ends.
#include "support/process.h"

#include <kett/kett.h>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <string>
#include <thread>

#include <sys/mman.h>

namespace
{

struct Name {
    std::string text;
    int heard = 0;
};

Name first{"first"};
Name second{"second"};

void firstSink(void *context, int32_t, int32_t, const char *)
{
    EXPECT_EQ(context, &first);
    ++first.heard;
}

void secondSink(void *context, int32_t, int32_t, const char *)
{
    EXPECT_EQ(context, &second);
    ++second.heard;
}

int32_t doNothing(void *)
{
    return 0;
}

void showDescriptor()
{
    KT_MEM *memory = KTMEM_CreateMemDescrEx("fork", 0, 0);
    KTMEM_DisplayMemDescr(memory);
    KTMEM_DisposeMemDescr(memory);
}

// What threads of the host repeat while it forks.
const struct {
    const char *name;
    void (*step)();
} uses[] = {
    {"settings",
     [] {
         KTSETTINGS_SetEx(nullptr, "fork=%d", 1);
         KTSETTINGS_UnsetEx(nullptr, "fork");
     }},
    {"environment",
     [] {
         KTENV_SetEnvValue("FORK", "value");
         KTENV_SetEnvValue("FORK", nullptr);
     }},
    {"versions", [] { KTVERSION_Register("fork", 1, 2, 3, 4); }},
    {"descriptors", showDescriptor},
    {"threads", [] { KTTHREAD_JoinThreadEx(KTTHREAD_AddThread(doNothing, nullptr, 0), 0); }},
    {"log", [] { KTDEBUG_Log(-1, "fork"); }},
    {"sinks",
     [] {
         KTDEBUG_SetSink(firstSink, &first);
         KTDEBUG_SetSink(secondSink, &second);
     }},
};

void useEverything()
{
    EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "child=%d", 5));
    EXPECT_EQ(KTSETTINGS_GetIntEx(nullptr, "child=[3]"), 5);
    EXPECT_TRUE(KTENV_SetEnvValue("CHILD", "value"));
    EXPECT_STREQ(KTENV_GetEnvValue("CHILD"), "value");
    EXPECT_TRUE(KTVERSION_Register("child", 1, 2, 3, 4));
    EXPECT_TRUE(KTVERSION_Find("child", nullptr, nullptr, nullptr, nullptr));
    showDescriptor();
    const int heard = first.heard + second.heard;
    KTDEBUG_Log(-1, "child");
    EXPECT_EQ(first.heard + second.heard, heard + 1);
    KTDEBUG_SetSink(nullptr, nullptr);
}

// A child that hangs, in the body or at its end, is ended by a signal.
void inChild(const std::function<void()> &body)
{
    support::inOwnProcess([&] {
        alarm(60);
        body();
    });
}

} // namespace

TEST(KettFork, AChildUsesEverythingWhateverThreadsOfItsParentDo)
{
    for (const auto &use : uses) {
        SCOPED_TRACE(use.name);
        KTDEBUG_SetSink(firstSink, &first);
        std::atomic<int> turns = 0;
        std::atomic<bool> isToEnd = false;
        const auto repeat = [&] {
            while (!isToEnd) {
                use.step();
                ++turns;
            }
        };
        std::thread threads[] = {std::thread(repeat), std::thread(repeat)};
        for (int round = 0; round < 10 && !testing::Test::HasFailure(); ++round) {
            const int turn = turns;
            while (turns < turn + 2)
                std::this_thread::yield();
            inChild(useEverything);
        }
        isToEnd = true;
        for (std::thread &thread : threads)
            thread.join();
    }
    KTDEBUG_SetSink(nullptr, nullptr);
}

// The fork does not wait for it, nor does the child.
TEST(KettFork, AChildLogsWhileASinkRunsInItsParent)
{
    static std::atomic<bool> isInside = false;
    static std::atomic<bool> isToReturn = false;
    KTDEBUG_SetSink(
        [](void *, int32_t, int32_t, const char *text) {
            ++first.heard;
            isInside = true;
            while (text == std::string("wait") && !isToReturn)
                std::this_thread::yield();
        },
        nullptr);
    std::thread waiting([] { KTDEBUG_Log(-1, "wait"); });
    while (!isInside)
        std::this_thread::yield();
    inChild(useEverything);
    isToReturn = true;
    waiting.join();
    KTDEBUG_SetSink(nullptr, nullptr);
}

TEST(KettFork, ASinkMayFork)
{
    static pid_t child;
    KTDEBUG_SetSink([](void *, int32_t, int32_t, const char *) { child = fork(); }, nullptr);
    KTDEBUG_Log(-1, "fork");
    KTDEBUG_SetSink(firstSink, &first); // in both
    if (child == 0) {
        alarm(60);
        useEverything();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    KTDEBUG_SetSink(nullptr, nullptr);
}

// The handler runs where libkett reads the second half of the name, with the lock of the environment held.
TEST(KettFork, AHandlerOfAFaultMayFork)
{
    static const auto size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    static char *const pages = static_cast<char *>(
        mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(pages, MAP_FAILED);
    static char *const name = std::strcpy(pages + size - 2, "FORK");
    EXPECT_TRUE(KTENV_SetEnvValue(name, "value"));

    static int status = -1;
    std::signal(SIGSEGV, [](int) {
        const pid_t child = fork();
        if (child == 0)
            _exit(0);
        waitpid(child, &status, 0);
        mprotect(pages, 2 * size, PROT_READ);
    });
    alarm(60);
    mprotect(pages + size, size, PROT_NONE);
    EXPECT_STREQ(KTENV_GetEnvValue(name), "value");
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(KTENV_SetEnvValue("FORK", nullptr)); // the lock is free again
    std::signal(SIGSEGV, SIG_DFL);
    munmap(pages, 2 * size);
}
