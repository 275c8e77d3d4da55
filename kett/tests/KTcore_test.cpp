#include "support/log.h"

#include <kett/KTcore.h>
#include <kett/KTenv.h>
#include <kett/KTsettings.h>
#include <kett/KTversion.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

TEST(CoreUses, AreCountedUpAndDown)
{
    EXPECT_EQ(KTCORE_Initialize(), 1);
    EXPECT_EQ(KTCORE_Initialize(), 2);
    EXPECT_EQ(KTCORE_Initialize(), 3);
    EXPECT_EQ(KTCORE_Finalize(), 2);
    EXPECT_EQ(KTCORE_Finalize(), 1);
    EXPECT_EQ(KTCORE_Finalize(), 0);
}

TEST(CoreUses, NeverGoBelowZero)
{
    EXPECT_EQ(KTCORE_Finalize(), 0);
    EXPECT_EQ(KTCORE_Finalize(), 0);
    EXPECT_EQ(KTCORE_Initialize(), 1);
    EXPECT_EQ(KTCORE_Finalize(), 0);
}

TEST(CoreUses, AreExactUnderSeveralThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int k = 0; k < 1000; ++k) {
                KTCORE_Initialize();
                KTCORE_Initialize();
                KTCORE_Finalize();
            }
        });
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(KTCORE_Initialize(), 4001);
}

// What was set before the first use is there between and after the uses.
TEST(CoreUses, SettingsValuesVersionsAndSinkSurviveStartAndStop)
{
    support::Log log;
    EXPECT_TRUE(KTVERSION_Register("before", 1, 2, 3, 4));
    EXPECT_TRUE(KTSETTINGS_SetDefaultEx(nullptr, "core.default=%d", 5));
    EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "core.value=%d", 6));
    EXPECT_TRUE(KTENV_SetEnvValue("CORE_VALUE", "seven"));
    KTDEBUG_Warning(-1, "before");

    const auto look = [](const char *when) {
        int32_t major = 0;
        EXPECT_TRUE(KTVERSION_Find("before", &major, nullptr, nullptr, nullptr)) << when;
        EXPECT_EQ(major, 1) << when;
        EXPECT_EQ(KTSETTINGS_GetIntEx(nullptr, "core.default=[0]"), 5) << when;
        EXPECT_EQ(KTSETTINGS_GetIntEx(nullptr, "core.value=[0]"), 6) << when;
        EXPECT_STREQ(KTENV_GetEnvValue("CORE_VALUE"), "seven") << when;
        KTDEBUG_Warning(-1, "%s", when);
    };
    KTCORE_Initialize();
    look("between");
    KTCORE_Finalize();
    look("after");
    EXPECT_EQ(log.messages, (std::vector{support::warning("before"), support::warning("between"),
                                         support::warning("after")}));
}
