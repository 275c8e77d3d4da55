// Configuration strings: vectors and matrices.
#include "KTstring_lookup.h"
#include "support/bits.h"

#include <cfloat>
#include <string>

using lookup::Matrix;
using support::sameBits;

TEST(ConfigMatrix, ReadsRowsOfEqualLength)
{
    static const struct {
        const char *value;
        Matrix expected;
    } table[] = {
        {"[-0.94, 0.33, 0.1, 0.2, 0.1; -1.1 0.4 0.2 0.4 0.2]",
         {2, 5, {-0.94, 0.33, 0.1, 0.2, 0.1, -1.1, 0.4, 0.2, 0.4, 0.2}}},
        {"[1 2;3 4;5 6]", {3, 2, {1, 2, 3, 4, 5, 6}}},
        {"[1;2;3]", {3, 1, {1, 2, 3}}},
        {"[1 2]", {1, 2, {1, 2}}}, // a vector is a matrix of one row
        {"7.5", {1, 1, {7.5}}},    // and so is a bare number
        {"[7.5]", {1, 1, {7.5}}},
        {"[1 2;3 4;]", {2, 2, {1, 2, 3, 4}}}, // a last row may be followed by ';'
        {"[1 2;]", {1, 2, {1, 2}}},
        {"[1,2;3 4]", {2, 2, {1, 2, 3, 4}}}, // gaps of any kind
        {"[1 ,2 ; 3, 4]", {2, 2, {1, 2, 3, 4}}},
        {"[1 , 2\n;\n3\t,\r4 ]", {2, 2, {1, 2, 3, 4}}},
        {"[ \t\n\v\f\r1 \t\n\v\f\r2 \t\n\v\f\r; \t\n\v\f\r3 4 \t\n\v\f\r; \t\n\v\f\r]", {2, 2, {1, 2, 3, 4}}},
        {"[[1 2],[3 4]]", {2, 2, {1, 2, 3, 4}}}, // nested rows
        {"[[1 2] [3 4]]", {2, 2, {1, 2, 3, 4}}},
        {"[[1 2][3 4]]", {2, 2, {1, 2, 3, 4}}},
        {"[ [ 1 , 2 ] , [ 3 , 4 ] ]", {2, 2, {1, 2, 3, 4}}},
        {"[\n[1,2]\n[3,4]\n]", {2, 2, {1, 2, 3, 4}}},
        {"[[1]\t,\t[2] [3]]", {3, 1, {1, 2, 3}}},
        {"[[1 2]]", {1, 2, {1, 2}}},
        {"[[1]]", {1, 1, {1}}},
        {"[+1 -2 3. .4 5e1 6E-1]", {1, 6, {1, -2, 3, 0.4, 50, 0.6}}},
    };
    for (const auto &row : table) {
        const std::string config = std::string("a=") + row.value + ";b=7";
        EXPECT_EQ(lookup::matrix(config, "a"), row.expected) << row.value;
        const auto vector = row.expected.rows == 1 ? std::optional(row.expected.values) : std::nullopt;
        EXPECT_EQ(lookup::vector(config, "a"), vector) << row.value; // of several rows there is none
        EXPECT_EQ(lookup::integer(config, "b"), 7) << row.value;
    }
}

TEST(ConfigMatrix, IsNoneOtherwise)
{
    for (const char *value : {
             "[]",
             "[ ]",
             "[;]",
             "[,]",
             "[[]]",
             "[[],[]]",
             "[[ ]]",
             "[1 2;3]",
             "[1;2 3]",
             "[1 2;3 4;5]",
             "[[1 2],[3]]",
             "[[1],[2 3]]",
             "[,1]",
             "[1,]",
             "[1,,2]",
             "[1 , , 2]",
             "[1,;2]",
             "[1;,2]",
             "[;1]",
             "[1;;2]",
             "[1;;]",
             "[1 2;;]",
             "[1 ; ; 2]",
             "[1;2,]",
             "[[1 2];[3 4]]",
             "[[1 2],]",
             "[,[1 2]]",
             "[[1],,[2]]",
             "[[1];]",
             "[[1;]]",
             "[[1;2]]",
             "[[1 2] 3]",
             "[1 [2]]",
             "[1[2]]",
             "[[1] 2]",
             "[[[1]]]",
             "[[1],[[2]]]",
             "[[1,]]",
             "[[,1]]",
             "[1 x]",
             "[x]",
             "[1 2x]",
             "[0x10]",
             "[inf]",
             "[nan 1]",
             "[1 \"2\"]",
             "[\"1\"]",
             "[1=2]",
             "[a=1]",
             "[1e400]",
             "[1 -1e400 2]",
             "[1e99999999999999999999]",
             "[+]",
             "[1 - 2]",
             "\"1\"",
             "\"[1 2]\"",
             "\"\"",
             "x",
             "5x",
             "1e400",
             "1]",
             "1[2]",
             "1\"",
             "true",
             "[1 2]x",
             "[1 2][3 4]",
         }) {
        const std::string config = std::string("a=") + value + ";b=[1 2]";
        EXPECT_EQ(lookup::matrix(config, "a"), std::nullopt) << value;
        EXPECT_EQ(lookup::vector(config, "a"), std::nullopt) << value;
        EXPECT_EQ(lookup::vector(config, "b"), (std::vector<double>{1, 2})) << value; // the reading goes on
    }
}

TEST(ConfigMatrix, IsNoneWhereThereIsNoPair)
{
    for (const char *config : {"", "b=[1]", "a", "a=", "a=;b=1", "a=[1 2", "a=[[1 2]", "a [1]", "A=[1]"}) {
        EXPECT_EQ(lookup::matrix(config, "a"), std::nullopt) << config;
        EXPECT_EQ(lookup::vector(config, "a"), std::nullopt) << config;
    }
    int32_t size = -1;
    EXPECT_EQ(KTSTRING_GetVectorSizeFromString(nullptr, "a", &size), 0);
    EXPECT_EQ(KTSTRING_GetVectorSizeFromString("a=[1]", nullptr, &size), 0);
    EXPECT_EQ(KTSTRING_GetMatrixSizeFromString(nullptr, "a", &size, &size), 0);
    EXPECT_EQ(KTSTRING_GetMatrixSizeFromString("a=[1]", nullptr, &size, &size), 0);
    double value = -1.0;
    EXPECT_EQ(KTSTRING_GetDoubleVectorValuesFromString(nullptr, "a", &value, 1), 0);
    EXPECT_EQ(KTSTRING_GetDoubleVectorValuesFromString("a=[1]", nullptr, &value, 1), 0);
    EXPECT_EQ(KTSTRING_GetDoubleMatrixValuesFromString(nullptr, "a", &value, 1, 1), 0);
    EXPECT_EQ(KTSTRING_GetDoubleMatrixValuesFromString("a=[1]", nullptr, &value, 1, 1), 0);
    EXPECT_EQ(size, -1);
    EXPECT_EQ(value, -1.0);
}

TEST(ConfigMatrix, TheSizesCanBeLeftOut)
{
    EXPECT_EQ(KTSTRING_GetVectorSizeFromString("a=[1 2]", "a", nullptr), 1);
    int32_t count = -1;
    EXPECT_EQ(KTSTRING_GetMatrixSizeFromString("a=[1 2;3 4;5 6]", "a", &count, nullptr), 1);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(KTSTRING_GetMatrixSizeFromString("a=[1 2;3 4;5 6]", "a", nullptr, &count), 1);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(KTSTRING_GetVectorSizeFromString("a=[1;2]", "a", nullptr), 0);
    EXPECT_EQ(KTSTRING_GetMatrixSizeFromString("a=[]", "a", nullptr, nullptr), 0);
}

TEST(ConfigVector, ElementsAreDoublesRoundedOnce)
{
    const auto values =
        lookup::vector("a=[0.1 1.7976931348623157e308 2.2250738585072014e-308 5e-324 2e-324 -1e-400 "
                       "9007199254740993 1.00000000000000011102230246251565404236316680908203124]",
                       "a");
    ASSERT_TRUE(values.has_value());
    const std::vector<double> expected = {0.1, DBL_MAX, DBL_MIN, DBL_TRUE_MIN, 0.0, -0.0, 9007199254740992.0,
                                          1.0};
    EXPECT_TRUE(sameBits(*values, expected));
}
