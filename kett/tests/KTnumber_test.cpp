#include "../src/KTnumber.h"
#include "support/bits.h"
#include "support/comma_locale.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace
{

using support::sameBits;
using Double = std::numeric_limits<double>;
using Float = std::numeric_limits<float>;

template <class Value>
std::optional<Value> parsed(bool (*parse)(std::string_view, Value &), std::string_view text)
{
    Value value = static_cast<Value>(77);
    if (parse(text, value))
        return value;
    EXPECT_EQ(value, static_cast<Value>(77)) << "written though refused: " << text;
    return std::nullopt;
}

auto integer(std::string_view text)
{
    return parsed(kett::parseInteger, text);
}

auto asDouble(std::string_view text)
{
    return parsed(kett::parseDouble, text);
}

auto asFloat(std::string_view text)
{
    return parsed(kett::parseFloat, text);
}

auto boolean(std::string_view text)
{
    return parsed(kett::parseBoolean, text);
}

std::string zeros(size_t count, std::string before = "")
{
    return before.append(count, '0');
}

const char *const noNumbers[] = {
    "",      "+",     "-",    ".",     "+.",       "-.e1", "e1",  "1e",   "1e+",      "1e-",
    "--1",   "+-1",   "-+1",  "1 ",    " 1",       "1 2",  "5x",  "x5",   "1.2.3",    "1..2",
    "1e1.5", "1e1e1", "0x10", "0x1p3", "inf",      "-inf", "nan", "NaN",  "infinity", "1,5",
    "1_000", "0b1",   "1d3",  "1f",    "\xd9\xa1", "1e5x", "- 1", "1e 5",
};

} // namespace

TEST(Number, IsRefusedWhereTheWholeWordIsNoDecimal)
{
    for (const char *text : noNumbers) {
        EXPECT_EQ(integer(text), std::nullopt) << text;
        EXPECT_EQ(asDouble(text), std::nullopt) << text;
        EXPECT_EQ(asFloat(text), std::nullopt) << text;
        EXPECT_EQ(boolean(text), std::nullopt) << text;
    }
    EXPECT_EQ(integer(std::string_view("1\0", 2)), std::nullopt);
    EXPECT_EQ(integer(std::string_view()), std::nullopt);
    EXPECT_EQ(asDouble(std::string_view()), std::nullopt);
}

TEST(Number, MayHaveSignFractionAndExponent)
{
    struct Case {
        const char *text;
        double value;
        int64_t integer;
    };
    constexpr Case cases[] = {
        {"0", 0.0, 0},
        {"7", 7.0, 7},
        {"+7", 7.0, 7},
        {"-7", -7.0, -7},
        {"007", 7.0, 7},
        {"5.", 5.0, 5},
        {".5", 0.5, 0},
        {"-.5", -0.5, 0},
        {"+.5", 0.5, 0},
        {"2.9", 2.9, 2},
        {"-2.9", -2.9, -2},
        {"1e3", 1000.0, 1000},
        {"1E3", 1000.0, 1000},
        {"1e+3", 1000.0, 1000},
        {"1e-3", 0.001, 0},
        {"2.5e1", 25.0, 25},
        {"-2.57e1", -25.7, -25},
        {"1234e-2", 12.34, 12},
        {"0.0012e4", 12.0, 12},
        {"0e9", 0.0, 0},
        {".5e1", 5.0, 5},
        {"5.e1", 50.0, 50},
        {"0.99999999999999999999", 1.0, 0},
        {"1e18", 1e18, 1000000000000000000},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(integer(c.text), c.integer) << c.text;
        EXPECT_EQ(asDouble(c.text), c.value) << c.text;
        EXPECT_EQ(asFloat(c.text), static_cast<float>(c.value)) << c.text;
    }
}

TEST(NumberInteger, IsExactAtTheEndsOfItsRange)
{
    struct Case {
        std::string text;
        std::optional<int64_t> expected;
    };
    const Case cases[] = {
        {"9223372036854775807", INT64_MAX},
        {"9223372036854775807.9", INT64_MAX},
        {"9223372036854775808", std::nullopt},
        {"-9223372036854775808", INT64_MIN},
        {"-9223372036854775808.9", INT64_MIN},
        {"-9223372036854775809", std::nullopt},
        {"9999999999999999999", std::nullopt},
        {"18446744073709551616", std::nullopt},
        {"92233720368547758.07e2", INT64_MAX},
        {"0.0009223372036854775807999e22", INT64_MAX},
        {"9223372036854775807000e-3", INT64_MAX},
        {"9e18", 9000000000000000000},
        {"1e19", std::nullopt},
        {"1e99999999999999999999999", std::nullopt},
        {"-1e99999999999999999999999", std::nullopt},
        {"1e-99999999999999999999999", 0},
        {"0e99999999999999999999999", 0},
        {"0.000e99999999999999999999999", 0},
        {zeros(5000) + "12", 12},
        {zeros(5000, "0.") + "12e5002", 12},
        {zeros(5000, "12") + "e-5000", 12},
        {zeros(5000, "12") + ".7e-5000", 12},
        {zeros(5000, "1"), std::nullopt},
        {zeros(5000, "0.") + "1", 0},
        {"-0", 0},
    };
    for (const auto &c : cases)
        EXPECT_EQ(integer(c.text), c.expected) << c.text.substr(0, 40);
}

TEST(NumberReal, TooSmallGivesZeroWithItsSignAndTooLargeIsRefused)
{
    for (const std::string exponent : {"e-400", "e-999999", "e-99999999999999999999999"}) {
        EXPECT_TRUE(sameBits(asDouble("1" + exponent).value(), 0.0)) << exponent;
        EXPECT_TRUE(sameBits(asDouble("-1" + exponent).value(), -0.0)) << exponent;
        EXPECT_TRUE(sameBits(asFloat("1" + exponent).value(), 0.0f)) << exponent;
        EXPECT_TRUE(sameBits(asFloat("-123.5" + exponent).value(), -0.0f)) << exponent;
    }
    for (const std::string exponent : {"e400", "e999999", "e99999999999999999999999"}) {
        EXPECT_EQ(asDouble("1" + exponent), std::nullopt) << exponent;
        EXPECT_EQ(asDouble("-1" + exponent), std::nullopt) << exponent;
        EXPECT_EQ(asFloat("0.001" + exponent), std::nullopt) << exponent;
        EXPECT_TRUE(sameBits(asDouble("0" + exponent).value(), 0.0)) << exponent;
        EXPECT_TRUE(sameBits(asDouble("-0.000" + exponent).value(), -0.0)) << exponent;
    }
    EXPECT_TRUE(sameBits(asDouble("-0").value(), -0.0));
    EXPECT_TRUE(sameBits(asDouble(zeros(20000, "-0.") + "1").value(), -0.0));
    EXPECT_EQ(asDouble(zeros(20000, "1")), std::nullopt);
    EXPECT_EQ(asDouble(zeros(20000, "0.") + "1e20001"), 1.0);
    EXPECT_EQ(asDouble(zeros(20000, "1") + "e-20000"), 1.0);
}

TEST(NumberReal, RoundsAtTheEndsOfTheRange)
{
    // Half a step beyond the largest: below it rounds down, from it on it is out of range.
    EXPECT_EQ(asDouble("1.7976931348623157e308"), Double::max());
    EXPECT_EQ(asDouble("1.7976931348623158079372897140e308"), Double::max());
    EXPECT_EQ(asDouble("1.7976931348623158079372897141e308"), std::nullopt);
    EXPECT_EQ(asFloat("3.4028235e38"), Float::max());
    EXPECT_EQ(asFloat("340282356779733661637539395458142568447"), Float::max());
    EXPECT_EQ(asFloat("340282356779733661637539395458142568448"), std::nullopt);
    EXPECT_EQ(asFloat("-340282356779733661637539395458142568448"), std::nullopt);
    // Half of the smallest is a tie with zero, which is even.
    EXPECT_EQ(asDouble("4.9e-324"), Double::denorm_min());
    EXPECT_TRUE(sameBits(asDouble("-2.4703282292062327e-324").value(), -0.0));
    EXPECT_EQ(asDouble("2.4703282292062328e-324"), Double::denorm_min());
    EXPECT_EQ(asFloat("1.4e-45"), Float::denorm_min());
    EXPECT_TRUE(sameBits(asFloat("7.006492321624085354618e-46").value(), 0.0f));
    EXPECT_TRUE(sameBits(asFloat("-7.006492321624085354618e-46").value(), -0.0f));
    EXPECT_EQ(asFloat("7.006492321624085354619e-46"), Float::denorm_min());
}

// A little more than 1 + 2^-24: by way of double it would fall on that tie and go down to 1.
TEST(NumberReal, AFloatIsRoundedOnceFromTheText)
{
    const std::string text = "1.0000000596046447753906250000000001";
    EXPECT_EQ(asFloat(text), std::nextafter(1.0f, 2.0f));
    EXPECT_EQ(static_cast<float>(asDouble(text).value()), 1.0f);
}

// Here the C library reads the same text, under its own locale.
TEST(NumberReal, EqualsTheCLibraryOnRandomText)
{
    support::Random random;
    for (int i = 0; i < 20000; ++i) {
        std::string text = random.integer(0, 1) != 0 ? "-" : "";
        for (int64_t k = random.integer(1, 25); k > 0; --k)
            text += static_cast<char>('0' + random.integer(0, 9));
        text += '.';
        for (int64_t k = random.integer(0, 25); k > 0; --k)
            text += static_cast<char>('0' + random.integer(0, 9));
        text += 'e';
        text += std::to_string(random.integer(-370, 330));
        const double expected = std::strtod(text.c_str(), nullptr);
        const auto value = asDouble(text);
        ASSERT_EQ(value.has_value(), !std::isinf(expected)) << text;
        ASSERT_TRUE(!value.has_value() || sameBits(*value, expected)) << text;
        const float expectedFloat = std::strtof(text.c_str(), nullptr);
        const auto valueFloat = asFloat(text);
        ASSERT_EQ(valueFloat.has_value(), !std::isinf(expectedFloat)) << text;
        ASSERT_TRUE(!valueFloat.has_value() || sameBits(*valueFloat, expectedFloat)) << text;
    }
}

TEST(NumberInteger, EqualsItsOwnTextAtEveryPlaceOfThePoint)
{
    support::Random random;
    for (int i = 0; i < 5000; ++i) {
        const int64_t value = random.integer(INT64_MIN, INT64_MAX) >> random.integer(0, 62);
        EXPECT_EQ(integer(std::to_string(value)), value);
        const std::string digits = std::to_string(value).substr(value < 0 ? 1 : 0);
        const auto places = random.integer(0, static_cast<int64_t>(digits.size()));
        const size_t point = digits.size() - static_cast<size_t>(places);
        std::string moved = value < 0 ? "-" : "";
        moved.append(digits, 0, point).append(1, '.').append(digits, point);
        EXPECT_EQ(integer(moved + "e" + std::to_string(places)), value) << moved;
        EXPECT_EQ(integer(moved + "99e" + std::to_string(places)), value) << moved;
    }
}

TEST(Number, HasAPointInEveryLocale)
{
    const support::CommaLocale locale;
    EXPECT_EQ(asDouble("1.5"), 1.5);
    EXPECT_EQ(asFloat("1.5"), 1.5f);
    EXPECT_EQ(integer("1.5"), 1);
    EXPECT_EQ(asDouble("1,5"), std::nullopt);
}

TEST(NumberBoolean, IsAWordInAnyCaseOrAnInteger)
{
    for (const char *text : {"true", "TRUE", "tRuE", "yes", "Yes", "on", "ON", "1", "2", "-1", "1.9", "1e5"})
        EXPECT_EQ(boolean(text), true) << text;
    for (const char *text : {"false", "FALSE", "no", "NO", "off", "Off", "0", "-0", "0.9", "-0.9", "0e5"})
        EXPECT_EQ(boolean(text), false) << text;
    for (const char *text :
         {"t", "yess", "o", "enable", " true", "true ", "1e30", "-9223372036854775809", "y\xc5\xbf"})
        EXPECT_EQ(boolean(text), std::nullopt) << text;
}

// With the square of the length it would take hours; an emulator takes half a minute.
TEST(Number, TimeGrowsWithTheLengthOfTheText)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    for (const std::string &text :
         {zeros(2000000) + "1", zeros(2000000, "1"), zeros(2000000, "0.") + "1",
          std::string(2000000, '9') + "e-1999999", "1e" + std::string(2000000, '9')}) {
        integer(text);
        asDouble(text);
        asFloat(text);
        boolean(text);
    }
    EXPECT_LT(Clock::now() - start, std::chrono::minutes(3));
}
