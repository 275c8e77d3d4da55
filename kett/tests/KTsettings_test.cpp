#include "support/comma_locale.h"

#include <kett/KTsettings.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace
{

int64_t integer(const char *keyWithDefault)
{
    return KTSETTINGS_GetIntEx(nullptr, keyWithDefault);
}

bool boolean(const char *keyWithDefault)
{
    return KTSETTINGS_GetBoolEx(nullptr, keyWithDefault);
}

} // namespace

TEST(SettingsLiteral, GivesItsDefaultFromAnEmptyStore)
{
    EXPECT_TRUE(boolean("orva.fftw.use_wisdom=[1]"));
    EXPECT_FALSE(boolean("orva.fftw.prepare_plans=[0]"));
    EXPECT_EQ(integer("orva.fftw.max_plan_len=[4096]"), 4096);
    EXPECT_EQ(integer("liborva.resample.polyphase.order=30"), 30);
}

TEST(SettingsLiteral, MayBeBracketedOrBareWithBlanksAround)
{
    for (const char *literal :
         {"key=[30]", "key=30", " key = 30 ", "key=[ 30 ]", "\tkey\n=\v[\f30\r] ", "=30", "=[30]"})
        EXPECT_EQ(integer(literal), 30) << literal;
}

TEST(SettingsLiteral, IsNeverRemembered)
{
    EXPECT_EQ(integer("key=[1]"), 1);
    EXPECT_EQ(integer("key=[2]"), 2);
    EXPECT_EQ(integer("key=3"), 3);
    EXPECT_EQ(integer("key"), 0);
}

TEST(SettingsLiteral, WithoutADefaultGivesZeroAndFalse)
{
    for (const char *literal : {"key", "key=", "key=[]", "key=[ ]", "key=x", "key=[7", "key=7]", "key=[[7]]",
                                "key=[7]x", "key=7 8", "key=5x", "key=0x10", "key=\"7\"", "", "=", " "}) {
        EXPECT_EQ(integer(literal), 0) << literal;
        EXPECT_FALSE(boolean(literal)) << literal;
    }
    EXPECT_EQ(integer(nullptr), 0);
    EXPECT_FALSE(boolean(nullptr));
}

TEST(SettingsOrder, IsStoredValueThenSetDefaultThenLiteral)
{
    EXPECT_EQ(integer("key=[3]"), 3);
    EXPECT_TRUE(KTSETTINGS_SetDefaultEx(nullptr, "key=%d", 2));
    EXPECT_EQ(integer("key=[3]"), 2);
    EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "key=%d", 1));
    EXPECT_EQ(integer("key=[3]"), 1);
    EXPECT_TRUE(KTSETTINGS_SetDefaultEx(nullptr, "key=%d", 4));
    EXPECT_EQ(integer("key=[3]"), 1);
    EXPECT_TRUE(KTSETTINGS_UnsetEx(nullptr, "key"));
    EXPECT_EQ(integer("key=[3]"), 4);
    EXPECT_FALSE(KTSETTINGS_UnsetEx(nullptr, "key"));
    EXPECT_EQ(integer("key=[3]"), 4) << "defaults stay";
}

TEST(SettingsOrder, OneValueTakenAwayLeavesTheOthers)
{
    for (const char *gone : {"a", "b", "c"}) {
        for (const char *pair : {"a=1", "b=2", "c=3"})
            EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "%s", pair));
        EXPECT_TRUE(KTSETTINGS_UnsetEx(nullptr, gone));
        EXPECT_EQ(integer("a=[9]"), *gone == 'a' ? 9 : 1) << gone;
        EXPECT_EQ(integer("b=[9]"), *gone == 'b' ? 9 : 2) << gone;
        EXPECT_EQ(integer("c=[9]"), *gone == 'c' ? 9 : 3) << gone;
    }
}

TEST(SettingsOrder, WhatDoesNotParseCountsAsAbsent)
{
    KTSETTINGS_SetEx(nullptr, "both=%s", "no number");
    KTSETTINGS_SetDefaultEx(nullptr, "both=%s", "2");
    EXPECT_EQ(integer("both=[3]"), 2);
    KTSETTINGS_SetDefaultEx(nullptr, "both=%s", "none either");
    EXPECT_EQ(integer("both=[3]"), 3);
    EXPECT_EQ(integer("both=[nor this]"), 0);
    KTSETTINGS_SetEx(nullptr, "word=yes");
    EXPECT_TRUE(boolean("word=[0]"));
    EXPECT_EQ(integer("word=[7]"), 7) << "a boolean word is no integer";
}

TEST(SettingsDefault, OfPreparePlansIsFalseOnceItHasBeenSet)
{
    EXPECT_TRUE(KTSETTINGS_SetDefaultEx(nullptr, "orva.fftw.prepare_plans=%d", 0));
    EXPECT_FALSE(boolean("orva.fftw.prepare_plans=[0]"));
    EXPECT_FALSE(boolean("orva.fftw.prepare_plans=[1]"));
    EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "orva.fftw.prepare_plans=%d", 1));
    EXPECT_TRUE(boolean("orva.fftw.prepare_plans=[0]"));
}

TEST(SettingsBoolean, IsAWordOrAnInteger)
{
    for (const char *word : {"1", "true", "TRUE", "True", "yes", "YES", "yEs", "on", "ON", "oN", "2", "-1",
                             "+1", "1.5", "1e3", "9223372036854775807", "[on]", " true "}) {
        ASSERT_TRUE(KTSETTINGS_SetEx(nullptr, "key=%s", word));
        EXPECT_TRUE(boolean("key=[0]")) << word;
    }
    for (const char *word :
         {"0", "false", "FALSE", "no", "No", "off", "OFF", "-0", "0.9", "-0.9", "1e-3", "[off]"}) {
        ASSERT_TRUE(KTSETTINGS_SetEx(nullptr, "key=%s", word));
        EXPECT_FALSE(boolean("key=[1]")) << word;
    }
    for (const char *word : {"y", "t", "truee", "tru", "o n", "nan", "9223372036854775808", "1x"}) {
        ASSERT_TRUE(KTSETTINGS_SetEx(nullptr, "key=%s", word));
        EXPECT_TRUE(boolean("key=[1]")) << word;
        EXPECT_FALSE(boolean("key=[0]")) << word;
    }
}

TEST(SettingsInteger, HasSixtyFourBits)
{
    EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "most=%lld", static_cast<long long>(INT64_MAX)));
    EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "least=%lld", static_cast<long long>(INT64_MIN)));
    EXPECT_EQ(integer("most=[0]"), INT64_MAX);
    EXPECT_EQ(integer("least=[0]"), INT64_MIN);
    EXPECT_EQ(integer("none=[4294967296]"), int64_t{1} << 32);
    EXPECT_EQ(integer("none=[9223372036854775808]"), 0) << "out of range counts as absent";
}

TEST(SettingsInteger, IsCutTowardZero)
{
    struct Case {
        const char *literal;
        int64_t expected;
    };
    for (const auto &c :
         {Case{"key=2.9", 2}, {"key=-2.9", -2}, {"key=[1e3]", 1000}, {"key=+12", 12}, {"key=1.5e1", 15}})
        EXPECT_EQ(integer(c.literal), c.expected) << c.literal;
}

TEST(SettingsKey, IsTrimmedAndCaseSensitive)
{
    EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "  Key.One \t=  [ %d ] \n", 5));
    EXPECT_EQ(integer("Key.One=[0]"), 5);
    EXPECT_EQ(integer(" Key.One =[0]"), 5);
    EXPECT_EQ(integer("Key.One"), 5);
    EXPECT_EQ(integer("key.one=[7]"), 7);
    EXPECT_EQ(integer("Key.On=[7]"), 7);
    EXPECT_EQ(integer("Key.One.Two=[7]"), 7);
    EXPECT_TRUE(KTSETTINGS_UnsetEx(nullptr, "\n Key.One "));
    EXPECT_EQ(integer("Key.One=[0]"), 0);
}

TEST(SettingsKey, EndsAtTheFirstEqualsSign)
{
    EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "key=5=6"));
    EXPECT_EQ(integer("key=[7]"), 7);
    EXPECT_TRUE(KTSETTINGS_UnsetEx(nullptr, "key"));
}

TEST(SettingsText, WithoutKeyAndValueIsRefusedAndChangesNothing)
{
    KTSETTINGS_SetEx(nullptr, "key=1");
    KTSETTINGS_SetDefaultEx(nullptr, "key=2");
    const char *const none = nullptr;
    const wchar_t *const noText = L"\x4e2d"; // in the C locale
    for (const auto set : {KTSETTINGS_SetEx, KTSETTINGS_SetDefaultEx}) {
        for (const char *text : {"", "key", "key=", "key= ", "key=[]", "key=[ ]", "=5", " =5", "="})
            EXPECT_FALSE(set(nullptr, "%s", text)) << text;
        EXPECT_FALSE(set(nullptr, none));
        EXPECT_FALSE(set(nullptr, "key=%ls", noText));
        EXPECT_EQ(integer("key=[3]"), 1);
    }
    EXPECT_TRUE(KTSETTINGS_UnsetEx(nullptr, "key"));
    EXPECT_EQ(integer("key=[3]"), 2);
    for (const char *key : {static_cast<const char *>(nullptr), "", "other"})
        EXPECT_FALSE(KTSETTINGS_UnsetEx(nullptr, key));
}

TEST(SettingsText, HasAnyLength)
{
    for (const size_t length : {1000u, 1020u, 1024u, 5000u, 100000u}) {
        const std::string key(length, 'k');
        const std::string number = std::string(length, '0') + "42";
        EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "%s=%s", key.c_str(), number.c_str()));
        EXPECT_EQ(integer((key + "=[0]").c_str()), 42) << length;
        EXPECT_EQ(integer((key + "k=[0]").c_str()), 0) << length;
    }
}

TEST(SettingsText, IsFormattedWithAPointInEveryLocale)
{
    const support::CommaLocale locale;
    ASSERT_EQ(std::to_string(2.5), "2,500000");
    EXPECT_TRUE(KTSETTINGS_SetEx(nullptr, "stored=%f", 2.5));
    EXPECT_TRUE(KTSETTINGS_SetDefaultEx(nullptr, "default=%'d", 1234567));
    EXPECT_EQ(integer("stored=[0]"), 2);
    EXPECT_EQ(integer("default=[0]"), 1234567);
    EXPECT_EQ(integer("literal=[3.5]"), 3);
    EXPECT_EQ(integer("literal=[3,5]"), 0);
    EXPECT_EQ(std::to_string(2.5), "2,500000") << "the host's locale is back in force";
}

TEST(SettingsStore, ServesSeveralThreads)
{
    KTSETTINGS_SetDefaultEx(nullptr, "shared=%d", 1111);
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        while (!stop) {
            KTSETTINGS_SetEx(nullptr, "shared=%d", 2222);
            KTSETTINGS_SetDefaultEx(nullptr, "shared=%d", 3333);
            KTSETTINGS_UnsetEx(nullptr, "shared");
            KTSETTINGS_SetEx(nullptr, "other=%d", 1);
            KTSETTINGS_UnsetEx(nullptr, "other");
        }
    });
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([] {
            for (int k = 0; k < 2000; ++k) {
                const int64_t value = integer("shared=[0]");
                EXPECT_TRUE(value == 1111 || value == 2222 || value == 3333) << value;
                boolean("other=[0]");
            }
        });
    for (auto &reader : readers)
        reader.join();
    stop = true;
    writer.join();
}
