#include "support/log.h"
#include "support/standard_error.h"

#include <kett/KTdebug.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace
{

using support::Message;
using support::StandardError;

struct Level {
    void (*write)(int32_t code, const char *format, ...);
    int32_t number;
};

constexpr Level levels[] = {
    {KTDEBUG_Log, 0},
    {KTDEBUG_Warning, 1},
    {KTDEBUG_Error, 2},
    {KTDEBUG_TerminalError, 3},
};

} // namespace

TEST(DebugLevels, ReachTheSinkWithNumberCodeAndText)
{
    support::Log log;
    for (const auto &level : levels) {
        level.write(-1, "text %d", level.number);
        level.write(17, "%s and %u\n", "more", 4000000000u);
    }
    std::vector<Message> expected;
    for (const auto &level : levels) {
        expected.push_back({level.number, -1, "text " + std::to_string(level.number)});
        expected.push_back({level.number, 17, "more and 4000000000\n"});
    }
    EXPECT_EQ(log.messages, expected);
}

TEST(DebugMessages, HaveNothingAddedOrTrimmed)
{
    const char *const texts[] = {"",           "\n",          "no line feed", "line feed\n",
                                 "  blanks  ", "\n\ntwo\n\n", "100 %",        "\t\r\v"};
    support::Log log;
    StandardError standardError;
    std::vector<std::string> expected;
    for (const char *text : texts) {
        KTDEBUG_Error(-1, "%s", text);
        EXPECT_EQ(log.messages.back(), support::error(text));
    }
    KTDEBUG_SetSink(nullptr, nullptr);
    for (const char *text : texts) {
        KTDEBUG_Error(-1, "%s", text);
        expected.push_back(text);
    }
    EXPECT_EQ(standardError.pieces(), expected);
}

TEST(DebugMessages, HaveAnyLength)
{
    StandardError standardError;
    for (const size_t length : {1022u, 1023u, 1024u, 1025u, 4096u, 100000u}) {
        const std::string text(length, 'x');
        KTDEBUG_Log(-1, "%s!", text.c_str());
        EXPECT_EQ(standardError.pieces(), std::vector{text + "!"}) << length;
    }
    support::Log log;
    const std::string text(1000000, 'y');
    KTDEBUG_Log(-1, "%s!", text.c_str());
    ASSERT_EQ(log.messages.size(), 1u);
    EXPECT_EQ(log.messages[0].text, text + "!");
}

TEST(DebugMessages, ANullFormatWritesNothing)
{
    support::Log log;
    const char *none = nullptr;
    for (const auto &level : levels)
        level.write(-1, none);
    EXPECT_TRUE(log.messages.empty());
    StandardError standardError;
    KTDEBUG_SetSink(nullptr, nullptr);
    KTDEBUG_Log(-1, none);
    EXPECT_TRUE(standardError.pieces().empty());
}

TEST(DebugDefaultSink, WritesEachMessageByOneCall)
{
    StandardError standardError;
    KTDEBUG_Log(-1, "one %d\n", 1);
    KTDEBUG_Warning(-1, "two\nlines\n");
    KTDEBUG_Error(-1, "three");
    KTDEBUG_TerminalError(-1, "four");
    EXPECT_EQ(standardError.pieces(), (std::vector<std::string>{"one 1\n", "two\nlines\n", "three", "four"}));
}

TEST(DebugDefaultSink, WritesNullBytesToo)
{
    StandardError standardError;
    KTDEBUG_Log(-1, "a%cb", 0);
    EXPECT_EQ(standardError.pieces(), std::vector{std::string("a\0b", 3)});
}

TEST(DebugDefaultSink, ComesBackForANullSink)
{
    StandardError standardError;
    {
        support::Log log;
        KTDEBUG_Log(-1, "to the sink");
        EXPECT_EQ(log.messages.size(), 1u);
        KTDEBUG_SetSink(nullptr, &log);
        KTDEBUG_Log(-1, "to the default");
        EXPECT_EQ(log.messages.size(), 1u);
    }
    EXPECT_EQ(standardError.pieces(), std::vector<std::string>{"to the default"});
}

namespace
{

struct Watched {
    std::atomic<int> inside = 0;
    std::atomic<int> calls = 0;
    int unguarded = 0; // only serialised calls may touch it
    std::atomic<bool> overlapped = false;

    static void sink(void *context, int32_t, int32_t, const char *)
    {
        auto *self = static_cast<Watched *>(context);
        if (++self->inside != 1)
            self->overlapped = true;
        ++self->unguarded;
        ++self->calls;
        --self->inside;
    }
};

} // namespace

TEST(DebugSink, IsCalledByOneThreadAtATime)
{
    Watched watched;
    KTDEBUG_SetSink(Watched::sink, &watched);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int k = 0; k < 500; ++k)
                KTDEBUG_Log(-1, "%d", k);
        });
    for (auto &thread : threads)
        thread.join();
    KTDEBUG_SetSink(nullptr, nullptr);
    EXPECT_FALSE(watched.overlapped);
    EXPECT_EQ(watched.unguarded, 2000);
}

TEST(DebugSink, ThatWasReplacedIsNotRunningAnyMore)
{
    Watched first, second;
    KTDEBUG_SetSink(Watched::sink, &first);
    std::atomic<bool> stop = false;
    std::thread logger([&] {
        while (!stop)
            KTDEBUG_Log(-1, "x");
    });
    for (int i = 0; i < 100; ++i) {
        Watched *const old = i % 2 == 0 ? &first : &second;
        KTDEBUG_SetSink(Watched::sink, i % 2 == 0 ? &second : &first);
        const int calls = old->calls;
        EXPECT_EQ(old->inside, 0);
        std::this_thread::yield();
        EXPECT_EQ(old->calls, calls);
    }
    stop = true;
    logger.join();
    KTDEBUG_SetSink(nullptr, nullptr);
}
