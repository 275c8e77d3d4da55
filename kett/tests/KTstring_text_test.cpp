// KTSTRING_Strlwr and KTSTRING_CompareInsensitiveN.
#include <kett/KTstring.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace
{

int sign(int32_t x)
{
    return (x > 0) - (x < 0);
}

} // namespace

TEST(Strlwr, FoldsTheLettersOfAsciiAndNoOtherByte)
{
    for (const int32_t flags : {0, 1, -1}) {
        std::string text;
        std::string expected;
        for (int byte = 1; byte < 256; ++byte) {
            text += static_cast<char>(byte);
            expected += static_cast<char>(byte >= 65 && byte <= 90 ? byte + 32 : byte);
        }
        KTSTRING_Strlwr(text.data(), flags);
        EXPECT_EQ(text, expected);
    }
}

TEST(Strlwr, StopsAtTheTerminatingNull)
{
    char text[] = "TYPE=\0ABC";
    KTSTRING_Strlwr(text, 0);
    EXPECT_EQ(0, std::memcmp(text, "type=\0ABC", sizeof text));
}

TEST(Strlwr, TakesAnEmptyAndANullText)
{
    char text[] = "\0A";
    KTSTRING_Strlwr(text, 0);
    EXPECT_EQ(text[1], 'A');
    KTSTRING_Strlwr(nullptr, 0);
}

TEST(CompareInsensitiveN, ComparesUpToTheCountAndTheTerminatingNull)
{
    static const struct {
        const char *first, *second;
        int64_t count;
        int sign;
    } table[] = {
        {"hanning", "Hanning", 7, 0},
        {"HANNING", "hanning", INT64_MAX, 0},
        {"Hanning", "Hanning-Periodic", 16, -1},
        {"Hanning-Periodic", "Hanning", 16, 1},
        {"Hanning", "Hanning-Periodic", 8, -1}, // the null against '-'
        {"Hanning", "Hanning-Periodic", 7, 0},
        {"abc", "abd", 2, 0},
        {"abc", "ABD", 3, -1},
        {"ABD", "abc", 3, 1},
        {"b", "A", 1, 1},
        {"b", "_", 1, 1}, // folded before the comparison, so that '_' stands before all letters
        {"B", "_", 1, 1},
        {"[", "{", 1, -1}, // no letters, though 32 apart
        {"@", "`", 1, -1},
        {"\xc9", "\xe9", 1, -1}, // E acute in Latin-1, large and small
        {"\xe9", "a", 1, 1},     // bytes count as 128 to 255
        {"", "", 5, 0},
        {"", "a", 5, -1},
        {"a", "", 5, 1},
        {"", "a", 0, 0},
        {"a", "b", 0, 0},
        {"a", "b", -1, 0},
        {"a", "b", INT64_MIN, 0},
        {nullptr, nullptr, 3, 0},
        {nullptr, "", 3, 0},
        {nullptr, "a", 3, -1},
        {"a", nullptr, 3, 1},
        {"a", nullptr, 0, 0},
    };
    for (const auto &row : table)
        EXPECT_EQ(sign(KTSTRING_CompareInsensitiveN(row.first, row.second, row.count)), row.sign)
            << (row.first ? row.first : "(null)") << " and " << (row.second ? row.second : "(null)") << " to "
            << row.count;
}

TEST(CompareInsensitiveN, ReadsNothingAfterTheTerminatingNull)
{
    const char first[] = "ab\0x";
    const char second[] = "AB\0y";
    EXPECT_EQ(KTSTRING_CompareInsensitiveN(first, second, 4), 0);
}
