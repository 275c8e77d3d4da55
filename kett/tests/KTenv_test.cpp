#include "support/environment.h"

#include <kett/KTenv.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using support::setVariable;

TEST(EnvValue, APublishedOneGoesBeforeThatOfTheSystem)
{
    setVariable("KETT_TEST", "from the system");
    EXPECT_STREQ(KTENV_GetEnvValue("KETT_TEST"), "from the system");
    EXPECT_TRUE(KTENV_SetEnvValue("KETT_TEST", "published"));
    EXPECT_STREQ(KTENV_GetEnvValue("KETT_TEST"), "published");
    EXPECT_EQ(support::variable("KETT_TEST"), "from the system") << "the environment is not touched";
    EXPECT_TRUE(KTENV_SetEnvValue("KETT_TEST", nullptr));
    EXPECT_STREQ(KTENV_GetEnvValue("KETT_TEST"), "from the system");
}

TEST(EnvValue, IsNullWhereNothingIsSet)
{
    EXPECT_EQ(KTENV_GetEnvValue("KETT_TEST_ABSENT"), nullptr);
    EXPECT_TRUE(KTENV_SetEnvValue("KETT_TEST_ABSENT", nullptr)) << "taking away what is not there";
    EXPECT_EQ(KTENV_GetEnvValue("KETT_TEST_ABSENT"), nullptr);
}

TEST(EnvValue, ALaterCallSeesAValueSetSince)
{
    EXPECT_EQ(KTENV_GetEnvValue("KT_DATA_PATH"), nullptr);
    setVariable("KT_DATA_PATH", "/one");
    EXPECT_STREQ(KTENV_GetEnvValue("KT_DATA_PATH"), "/one");
    KTENV_SetEnvValue("KT_DATA_PATH", "/two");
    EXPECT_STREQ(KTENV_GetEnvValue("KT_DATA_PATH"), "/two");
    KTENV_SetEnvValue("KT_DATA_PATH", "/three");
    EXPECT_STREQ(KTENV_GetEnvValue("KT_DATA_PATH"), "/three");
}

TEST(EnvValue, AnEmptyPublishedOneIsAValue)
{
    setVariable("KETT_TEST", "from the system");
    EXPECT_TRUE(KTENV_SetEnvValue("KETT_TEST", ""));
    EXPECT_STREQ(KTENV_GetEnvValue("KETT_TEST"), "");
}

TEST(EnvValue, NamesAreTakenWhole)
{
    EXPECT_TRUE(KTENV_SetEnvValue("KETT_TEST", "one"));
    for (const char *name : {"KETT_TES", "KETT_TEST_", "kett_test", " KETT_TEST", ""})
        EXPECT_EQ(KTENV_GetEnvValue(name), nullptr) << '"' << name << '"';
    EXPECT_EQ(KTENV_GetEnvValue(nullptr), nullptr);
}

TEST(EnvValue, RefusesAnEmptyName)
{
    EXPECT_FALSE(KTENV_SetEnvValue(nullptr, "value"));
    EXPECT_FALSE(KTENV_SetEnvValue("", "value"));
    EXPECT_FALSE(KTENV_SetEnvValue(nullptr, nullptr));
    EXPECT_FALSE(KTENV_SetEnvValue("", nullptr));
}

TEST(EnvValue, NameAndValueAreCopied)
{
    std::string name = "KETT_TEST", value = "value";
    EXPECT_TRUE(KTENV_SetEnvValue(name.c_str(), value.c_str()));
    name = "CHANGED";
    value = "other";
    EXPECT_STREQ(KTENV_GetEnvValue("KETT_TEST"), "value");
}

TEST(EnvText, StaysValidAfterItHasBeenReplacedAndTakenAway)
{
    std::vector<const char *> texts;
    for (int i = 0; i < 100; ++i) {
        KTENV_SetEnvValue("KETT_TEST", ("value " + std::to_string(i)).c_str());
        texts.push_back(KTENV_GetEnvValue("KETT_TEST"));
    }
    KTENV_SetEnvValue("KETT_TEST", nullptr);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(texts[static_cast<size_t>(i)], "value " + std::to_string(i));
}

// A host that goes back and forth between values does not grow without end.
TEST(EnvText, PublishedAgainIsTheSameText)
{
    KTENV_SetEnvValue("KETT_TEST", "on");
    const char *const on = KTENV_GetEnvValue("KETT_TEST");
    KTENV_SetEnvValue("KETT_TEST", "off");
    const char *const off = KTENV_GetEnvValue("KETT_TEST");
    EXPECT_NE(on, off);
    KTENV_SetEnvValue("KETT_TEST", nullptr);
    KTENV_SetEnvValue("KETT_TEST", "on");
    EXPECT_EQ(KTENV_GetEnvValue("KETT_TEST"), on);
    KTENV_SetEnvValue("KETT_TEST", "off");
    EXPECT_EQ(KTENV_GetEnvValue("KETT_TEST"), off);
}

// A value may be published that the caller got from here.
TEST(EnvText, MayBePublishedItself)
{
    KTENV_SetEnvValue("KETT_TEST", "value");
    EXPECT_TRUE(KTENV_SetEnvValue("KETT_TEST", KTENV_GetEnvValue("KETT_TEST")));
    EXPECT_TRUE(KTENV_SetEnvValue("KETT_OTHER", KTENV_GetEnvValue("KETT_TEST")));
    EXPECT_STREQ(KTENV_GetEnvValue("KETT_TEST"), "value");
    EXPECT_STREQ(KTENV_GetEnvValue("KETT_OTHER"), "value");
}

TEST(EnvValue, ServesSeveralThreads)
{
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        for (int i = 0; !stop; ++i)
            KTENV_SetEnvValue("KETT_TEST", i % 3 == 0 ? nullptr : i % 3 == 1 ? "left" : "right");
    });
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([] {
            for (int k = 0; k < 2000; ++k) {
                const char *const value = KTENV_GetEnvValue("KETT_TEST");
                EXPECT_TRUE(value == nullptr || std::string("left") == value ||
                            std::string("right") == value);
            }
        });
    for (auto &reader : readers)
        reader.join();
    stop = true;
    writer.join();
}
