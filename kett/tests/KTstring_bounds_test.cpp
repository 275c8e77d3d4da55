// Configuration strings: room for results, and long texts.
#include "KTstring_lookup.h"

#include <algorithm>
#include <string>
#include <time.h>

namespace
{

// What a buffer holds after the bytes that may be written.
constexpr char untouchedCharacter = '\x55';
constexpr double untouched = -12345.5;

} // namespace

TEST(ConfigText, IsCutToTheRoomAndTerminated)
{
    static const struct {
        const char *config;
        const char *defaultValue;
    } table[] = {{"a=polyphase;b=1", nullptr},
                 {"a=\"polyphase\"", "default"},
                 {"a=\"polyphase\"b a=polyphase", nullptr},
                 {"b=1", "polyphase"}};
    for (const auto &row : table) {
        for (int32_t size = 1; size <= 12; ++size) {
            std::string output(16, untouchedCharacter);
            EXPECT_EQ(
                KTSTRING_GetStringValueFromString(row.config, "a", row.defaultValue, output.data(), size), 1);
            std::string expected = std::string("polyphase").substr(0, static_cast<size_t>(size) - 1) + '\0';
            expected.resize(16, untouchedCharacter);
            EXPECT_EQ(output, expected) << row.config << " in " << size;
        }
    }
    char output[4] = {};
    EXPECT_EQ(KTSTRING_GetStringValueFromString("a=[1, 2]", "a", nullptr, output, sizeof output), 1);
    EXPECT_STREQ(output, "[1,"); // cut like any text
    EXPECT_EQ(KTSTRING_GetStringValueFromString("a=\"\"", "a", "x", output, sizeof output), 1);
    EXPECT_STREQ(output, "");
}

TEST(ConfigText, WithoutRoomOrTextNothingIsWritten)
{
    char output[4] = {untouchedCharacter, untouchedCharacter, untouchedCharacter, untouchedCharacter};
    for (const int32_t size : {0, -1, INT32_MIN}) {
        EXPECT_EQ(KTSTRING_GetStringValueFromString("a=x", "a", "y", output, size), 0);
        EXPECT_EQ(KTSTRING_GetStringValueFromString("b=x", "a", "y", output, size), 0);
    }
    EXPECT_EQ(KTSTRING_GetStringValueFromString("a=x", "a", "y", nullptr, 4), 0);
    EXPECT_EQ(KTSTRING_GetStringValueFromString("b=x", "a", nullptr, output, 4), 0);
    EXPECT_EQ(KTSTRING_GetStringValueFromString("a=x", nullptr, nullptr, output, 4), 0);
    EXPECT_EQ(KTSTRING_GetStringValueFromString(nullptr, "a", nullptr, output, 4), 0);
    EXPECT_TRUE(std::ranges::all_of(output, [](char c) { return c == untouchedCharacter; }));
}

TEST(ConfigText, TheDefaultMayStandInTheOutput)
{
    char output[16] = "lowpass";
    EXPECT_EQ(KTSTRING_GetStringValueFromString("b=1", "a", output, output, sizeof output), 1);
    EXPECT_STREQ(output, "lowpass");
    EXPECT_EQ(KTSTRING_GetStringValueFromString("b=1", "a", output + 1, output, 4), 1);
    EXPECT_STREQ(output, "owp");
}

TEST(ConfigVector, NoMoreIsWrittenThanThereIsOrFits)
{
    for (int32_t capacity = -2; capacity <= 6; ++capacity) {
        std::vector<double> output(8, untouched);
        const int32_t expected = std::clamp(capacity, 0, 4);
        EXPECT_EQ(KTSTRING_GetDoubleVectorValuesFromString("a=[1 2 3 4]", "a", output.data(), capacity),
                  expected);
        for (int32_t i = 0; i < 8; ++i)
            EXPECT_EQ(output[static_cast<size_t>(i)], i < expected ? i + 1.0 : untouched)
                << "capacity " << capacity;
    }
    EXPECT_EQ(KTSTRING_GetDoubleVectorValuesFromString("a=[1 2 3 4]", "a", nullptr, 4), 0);
    double output = untouched;
    EXPECT_EQ(KTSTRING_GetDoubleVectorValuesFromString("a=[1 2 3 4]", "a", &output, INT32_MIN), 0);
    EXPECT_EQ(KTSTRING_GetDoubleVectorValuesFromString("a=[1 2 3 x]", "a", &output, 1),
              0); // not even the good ones
    EXPECT_EQ(KTSTRING_GetDoubleVectorValuesFromString("a=[1;2]", "a", &output, 1), 0);
    EXPECT_EQ(KTSTRING_GetDoubleVectorValuesFromString("a=5]", "a", &output, 1), 0);
    EXPECT_EQ(output, untouched);
}

// Row by row without a break: where the room has other rows, the second one begins in the first one's room.
TEST(ConfigMatrix, NoMoreIsWrittenThanThereIsOrFits)
{
    static const struct {
        int32_t rows, columns, expected;
    } table[] = {
        {2, 3, 6},         {3, 2, 6},
        {1, 6, 6},         {1, 3, 3},
        {2, 2, 4},         {1, 1, 1},
        {100, 100, 6},     {INT32_MAX, INT32_MAX, 6},
        {65536, 65536, 6}, // 2^32
        {65536, 32768, 6}, // 2^31
        {0, 3, 0},         {3, 0, 0},
        {-1, 3, 0},        {3, -1, 0},
        {-2, -3, 0},       {INT32_MIN, INT32_MIN, 0},
        {INT32_MIN, 2, 0}, {-65536, -65536, 0},
    };
    for (const auto &row : table) {
        std::vector<double> output(10, untouched);
        EXPECT_EQ(KTSTRING_GetDoubleMatrixValuesFromString("a=[1 2 3;4 5 6]", "a", output.data(), row.rows,
                                                           row.columns),
                  row.expected);
        for (int32_t i = 0; i < 10; ++i)
            EXPECT_EQ(output[static_cast<size_t>(i)], i < row.expected ? i + 1.0 : untouched)
                << row.rows << " x " << row.columns;
    }
    EXPECT_EQ(KTSTRING_GetDoubleMatrixValuesFromString("a=[1 2 3;4 5 6]", "a", nullptr, 2, 3), 0);
    double output = untouched;
    EXPECT_EQ(KTSTRING_GetDoubleMatrixValuesFromString("a=[1 2 3;4 5]", "a", &output, 1, 1), 0);
    EXPECT_EQ(KTSTRING_GetDoubleMatrixValuesFromString("a=[[1 2],[3 4]", "a", &output, 1, 1), 0);
    EXPECT_EQ(output, untouched);
}

namespace
{

std::string repeated(const std::string &text, size_t length)
{
    std::string result;
    while (result.size() < length)
        result += text;
    return result;
}

double processorSeconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

} // namespace

// Each text takes some milliseconds; a reading that is quadratic anywhere takes a minute.
TEST(ConfigText, LongTextsTakeTimeInProportion)
{
    const size_t length = 300'000;
    const std::string texts[] = {
        repeated("[", length),
        repeated("a=[", length),
        "a=" + repeated("[", length),
        "a=" + repeated("[1 2;", length),
        "a=" + repeated("[", length / 2) + repeated("]", length / 2),
        repeated("\"", length),
        repeated("a=\"", length),
        "a=" + repeated("\"", length),
        repeated("a=", length),
        repeated("a= ", length),
        repeated("a =1 ", length),
        repeated("a=\"\"x ", length),
        repeated("a=[1 2", length),
        repeated("a=[1 x] ", length),
        repeated("a", length),
        repeated(" ", length),
        "a" + repeated(" ", length),
        "a=" + repeated(" ", length),
        repeated("a ", length),
        repeated("a" + repeated(" ", 1000), length),
        repeated("=", length),
        "a=" + repeated("1", length),
        "a=." + repeated("0", length) + "1",
        "a=1e" + repeated("9", length),
        "a=[" + repeated("1 ", length) + "]",
        "a=[" + repeated("1;", length) + "]",
        "a=[" + repeated("[1],", length) + "[1]]",
        "a=[" + repeated(" ", length) + "]",
        "a=[1" + repeated(" ", length) + "]",
        "a=[" + repeated("1", length) + "]",
        "a=[" + repeated(repeated("1", 400) + " ", length) + "x]",
    };
    for (const auto &text : texts) {
        const double start = processorSeconds();
        lookup::text(text, "a");
        lookup::integer(text, "a");
        lookup::real(text, "a");
        lookup::boolean(text, "a");
        lookup::vector(text, "a");
        lookup::matrix(text, "a");
        EXPECT_LT(processorSeconds() - start, 5.0) << text.substr(0, 20);
    }
}

TEST(ConfigText, LongTextsAreReadToTheirEnd)
{
    const size_t count = 100'000;
    EXPECT_EQ(lookup::integer(repeated("b=[1 2; 3 4]; c=\"x y\" ", count) + "a=5", "a"), 5);
    EXPECT_EQ(lookup::text("a=\"" + std::string(count, 'x') + "\"", "a"), std::string(count, 'x'));
    EXPECT_EQ(lookup::vector("a=[" + repeated("1 ", 2 * count) + "]", "a"), std::vector<double>(count, 1.0));
    EXPECT_EQ(lookup::matrix("a=[" + repeated("1 2;", 4 * count) + "]", "a")->rows,
              static_cast<int32_t>(count));
    EXPECT_EQ(lookup::matrix("a=[" + repeated("[1 2]", 5 * count) + "]", "a")->rows,
              static_cast<int32_t>(count));
    EXPECT_EQ(lookup::real("a=." + std::string(count, '0') + "1e100001", "a"), 1.0f);
    EXPECT_EQ(lookup::real("a=1" + std::string(count, '0') + "e-100000", "a"), 1.0f);
    EXPECT_EQ(lookup::integer("a=1" + std::string(count, '0') + "e-100000", "a"), 1);
    // Above the middle of two floats by the last of very many digits, below which ties go to the even one.
    EXPECT_EQ(lookup::real("a=16777217." + std::string(count, '0') + "1", "a"), 16777218.0f);
    EXPECT_EQ(lookup::real("a=16777217." + std::string(count, '0'), "a"), 16777216.0f);
}
