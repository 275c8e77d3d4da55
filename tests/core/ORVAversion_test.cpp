#include "support/pattern.h"

#include <orva/ORVAversion.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

TEST(VersionNumber, EachPointerMayBeNull)
{
    constexpr std::array<int32_t, 4> version = {3, 7, 18, 0};
    for (unsigned mask = 0; mask < 16; ++mask) {
        std::array<int32_t, 4> stored = {-1, -1, -1, -1};
        const auto target = [&](unsigned i) { return (mask >> i & 1u) != 0 ? &stored[i] : nullptr; };
        ORVAVERSION_Number(target(0), target(1), target(2), target(3));
        for (unsigned i = 0; i < 4; ++i)
            EXPECT_EQ(stored[i], (mask >> i & 1u) != 0 ? version[i] : -1) << "mask " << mask;
    }
}

TEST(VersionNumber, IsTheVersionOfTheBuild)
{
    int32_t major = -1, minor = -1, release = -1;
    ORVAVERSION_Number(&major, &minor, &release, nullptr);
    EXPECT_EQ(std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(release),
              PROJECT_VERSION);
}

TEST(VersionString, IsOneLineWithTheDayOfCompilation)
{
    const support::Pattern line(
        R"(liborva version 3\.7\.18\.0 \(built in )"
        R"((Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) ( [1-9]|[12]\d|3[01]) \d{4}\))");
    EXPECT_TRUE(line.match(ORVAVERSION_String())) << ORVAVERSION_String();
}

TEST(VersionString, IsTheSamePointerEachTimeAndRewritten)
{
    const char *const text = ORVAVERSION_String();
    const std::string before = text;
    EXPECT_EQ(ORVAVERSION_String(), text);
    EXPECT_EQ(text, before);

    const_cast<char *>(text)[0] = '?'; // the buffer is writable inside the library
    EXPECT_EQ(ORVAVERSION_String(), before);
}

// Each reads what it is given without further ado, as hosts do; the thread sanitizer looks on in its build.
TEST(VersionString, SeveralThreadsMayAskForItFirst)
{
    std::atomic<int> ready = 0;
    std::array<std::string, 4> texts;
    {
        std::array<std::jthread, 4> threads;
        for (size_t i = 0; i < threads.size(); ++i)
            threads[i] = std::jthread([&, i] {
                for (++ready; ready < 4;)
                    std::this_thread::yield();
                texts[i] = ORVAVERSION_String();
            });
    }
    for (const std::string &text : texts)
        EXPECT_EQ(text, ORVAVERSION_String());
}

TEST(VersionString, IsNeverSeenEmptyOrTornWhileAnotherThreadAsksForIt)
{
    const char *const text = ORVAVERSION_String();
    const std::string expected = text;
    std::atomic<bool> done = false;
    std::thread other([&] {
        while (!done)
            ORVAVERSION_String();
    });
    int wrong = 0;
    for (const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
         std::chrono::steady_clock::now() < end;) {
        for (size_t k = 0; k <= expected.size(); ++k)
            wrong += std::atomic_ref(const_cast<char &>(text[k])).load(std::memory_order_relaxed) !=
                     expected.c_str()[k];
        std::this_thread::yield();
    }
    done = true;
    other.join();
    EXPECT_EQ(wrong, 0);
}
