// Configuration strings: integers, floats and booleans.
#include "KTstring_lookup.h"
#include "support/bits.h"
#include "support/comma_locale.h"
#include "support/random.h"

#include <cfloat>
#include <cstdlib>
#include <string>

using support::sameBits;

namespace
{

// A pair with this value, among others.
std::string pairOf(const std::string &value)
{
    return "b=7;a=" + value + ";c=8";
}

const char *const notNumbers[] = {
    "x",        "5x",    "x5",     "-",      "+",       ".",       "-.",     "e5",    "1e",  "1e+",
    "1e5.0",    "1e.5",  "1.2.3",  "+-5",    "--5",     "- 5",     "0x10",   "0x1p3", "1p3", "0b1",
    "inf",      "-inf",  "nan",    "NAN(1)", "1f",      "1d5",     "1_000",  "1'000", "$5",  "5%",
    "=5",       "5=",    "1\x80",  "\"\"",   "\"5x\"",  "[5]",     "[1 2]",  "[[5]]", "[]",  "\"[5]\"",
    "infinity", "1e5e5", "\" 5\"", "\"5 \"", "\"5 6\"", "\"5,0\"", "\"\t5\""};

} // namespace

TEST(ConfigInteger, ReadsItsWholeWordAndCutsTowardZero)
{
    static const struct {
        const char *value;
        int32_t expected;
    } table[] = {
        {"0", 0},
        {"-0", 0},
        {"+5", 5},
        {"-5", -5},
        {"0005", 5},
        {"4.0", 4},
        {"4.99", 4},
        {"-4.99", -4},
        {"-0.99", 0},
        {"5.", 5},
        {".5", 0},
        {"1e3", 1000},
        {"1E+3", 1000},
        {"1.2345e2", 123},
        {"-12345e-2", -123},
        {"1e-400", 0},
        {"0e999999999999999999999999", 0},
        {"123456e-999999999999999999999999", 0},
        {"2147483647", INT32_MAX},
        {"-2147483648", INT32_MIN},
        {"2147483647.99", INT32_MAX},
        {"-2147483648.99", INT32_MIN},
        {"2147483647000e-3", INT32_MAX},
        {"\"12\"", 12}, // quoted text is a scalar like a bare word
    };
    for (const auto &row : table)
        EXPECT_EQ(lookup::integer(pairOf(row.value), "a"), row.expected) << row.value;
}

TEST(ConfigInteger, WhatIsNoNumberOrOutOfRangeGivesTheDefault)
{
    for (const char *value : notNumbers)
        EXPECT_EQ(lookup::integer(pairOf(value), "a"), std::nullopt) << value;
    for (const char *value : {"2147483648", "-2147483649", "4294967296", "4294967301", "9223372036854775807",
                              "-9223372036854775808", "9223372036854775808", "18446744073709551616",
                              "18446744073709551621", "1e10", "1e400", "-1e400", "1e999999999999999999999"})
        EXPECT_EQ(lookup::integer(pairOf(value), "a"), std::nullopt) << value;
    EXPECT_EQ(KTSTRING_GetIntegerValueFromString("a=x", "a", -1), -1);
    EXPECT_EQ(KTSTRING_GetIntegerValueFromString("a=5", "b", INT32_MIN), INT32_MIN);
    EXPECT_EQ(KTSTRING_GetIntegerValueFromString("a=5", nullptr, 30), 30);
    EXPECT_EQ(KTSTRING_GetIntegerValueFromString(nullptr, "a", 30), 30);
}

TEST(ConfigFloat, IsRoundedOnceFromTheText)
{
    static const struct {
        const char *value;
        float expected;
    } table[] = {
        {"0", 0.0f},
        {"-0", -0.0f},
        {"+0.5", 0.5f},
        {"-1.25e2", -125.0f},
        {"8000", 8000.0f},
        {"5.", 5.0f},
        {".5", 0.5f},
        {"-.5E+1", -5.0f},
        {"0.1", 0.1f},
        {"\"0.1\"", 0.1f},
        {"16777217", 16777216.0f},                            // halfway: to even
        {"1.00000017881393432617187499", 1.0f + FLT_EPSILON}, // by way of a double it would be the next one
        {"3.4028234e38", FLT_MAX},
        {"3.40282356e38", FLT_MAX}, // nearest to FLT_MAX still
        {"1.17549435e-38", FLT_MIN},
        {"1.4e-45", FLT_TRUE_MIN},
        {"0.8e-45", FLT_TRUE_MIN},
        {"0.7e-45", 0.0f},
        {"-0.7e-45", -0.0f},
        {"1e-400", 0.0f},
        {"-1e-400", -0.0f},
        {"-1e-99999999999999999999", -0.0f},
        {"0e99999999999999999999", 0.0f},
    };
    for (const auto &row : table) {
        const auto actual = lookup::real(pairOf(row.value), "a");
        ASSERT_TRUE(actual.has_value()) << row.value;
        EXPECT_TRUE(sameBits(*actual, row.expected)) << row.value << " gave " << *actual;
    }
}

TEST(ConfigFloat, WhatIsNoNumberOrTooLargeGivesTheDefault)
{
    for (const char *value : notNumbers)
        EXPECT_EQ(lookup::real(pairOf(value), "a"), std::nullopt) << value;
    for (const char *value : {"3.4028236e38", "-3.4028236e38", "1e39", "1e400", "-1e99999999999999999999"})
        EXPECT_EQ(lookup::real(pairOf(value), "a"), std::nullopt) << value;
    EXPECT_EQ(KTSTRING_GetFloatValueFromString("a=x", "a", -1.5f), -1.5f);
    EXPECT_EQ(KTSTRING_GetFloatValueFromString("a=5", "b", -1.5f), -1.5f);
    EXPECT_EQ(KTSTRING_GetFloatValueFromString("a=5", nullptr, -1.5f), -1.5f);
    EXPECT_EQ(KTSTRING_GetFloatValueFromString(nullptr, "a", -1.5f), -1.5f);
    EXPECT_TRUE(std::isnan(KTSTRING_GetFloatValueFromString("", "a", NAN)));
}

TEST(ConfigFloat, ReadsEveryFloatBackFromItsDigits)
{
    support::Random random;
    for (int i = 0; i < 2000; ++i) {
        const float value = random.anyFloat();
        char word[80];
        std::snprintf(word, sizeof word, "%.*e", static_cast<int>(random.integer(8, 60)),
                      static_cast<double>(value));
        if (!std::isfinite(value))
            EXPECT_EQ(lookup::real(pairOf(word), "a"), std::nullopt) << word;
        else
            EXPECT_TRUE(sameBits(lookup::real(pairOf(word), "a").value_or(NAN), value)) << word;
    }
}

TEST(ConfigBoolean, KnowsItsWordsAndAnyInteger)
{
    static const struct {
        const char *value;
        bool expected;
    } table[] = {
        {"1", true},    {"0", false},  {"true", true},    {"false", false}, {"yes", true},
        {"no", false},  {"on", true},  {"off", false},    {"TRUE", true},   {"False", false},
        {"yEs", true},  {"NO", false}, {"oN", true},      {"OFF", false},   {"2", true},
        {"-1", true},   {"+0", false}, {"-0", false},     {"00", false},    {"0.0", false},
        {"0.5", false}, // an integer is cut toward zero first
        {"1.5", true},  {"1e1", true}, {"\"no\"", false}, {"\"1\"", true},  {"9223372036854775807", true}};
    for (const auto &row : table)
        EXPECT_EQ(lookup::boolean(pairOf(row.value), "a"), row.expected) << row.value;
}

TEST(ConfigBoolean, WhatIsNoBooleanGivesTheDefault)
{
    for (const char *value : notNumbers)
        EXPECT_EQ(lookup::boolean(pairOf(value), "a"), std::nullopt) << value;
    for (const char *value : {"t", "y", "tru", "truee", "nope", "of", "\"true \"", "[true]", "[1]", "o\xce",
                              "99999999999999999999"})
        EXPECT_EQ(lookup::boolean(pairOf(value), "a"), std::nullopt) << value;
    EXPECT_TRUE(KTSTRING_GetBooleanValueFromString("a=0", "b", true));
    EXPECT_FALSE(KTSTRING_GetBooleanValueFromString("a=1", nullptr, false));
    EXPECT_TRUE(KTSTRING_GetBooleanValueFromString(nullptr, "a", true));
}

TEST(ConfigNumber, TheDecimalSignIsThePointInALocaleWithAComma)
{
    const support::CommaLocale comma;
    EXPECT_EQ(lookup::real("a=0.5,b=2", "a"), 0.5f);
    EXPECT_EQ(lookup::integer("a=4.99", "a"), 4);
    EXPECT_EQ(lookup::real("a=0,5", "a"), 0.0f); // the comma ends the word
    EXPECT_EQ(lookup::real("a=\"0,5\"", "a"), std::nullopt);
    EXPECT_EQ(lookup::vector("a=[1.5,2.5]", "a"), (std::vector{1.5, 2.5}));
    EXPECT_EQ(lookup::boolean("a=0.5", "a"), false);
}
