// What is a pair of a configuration string, and what its value is as text.
#include "KTstring_lookup.h"

#include <string>

namespace
{

// The value of the key as text, null where it is absent.
struct Row {
    const char *config;
    const char *key;
    const char *expected;
};

template <size_t count> void check(const Row (&table)[count])
{
    for (const auto &row : table) {
        const auto expected =
            row.expected != nullptr ? std::optional<std::string>(row.expected) : std::nullopt;
        EXPECT_EQ(lookup::text(row.config, row.key), expected)
            << '\'' << row.config << "' asked for " << row.key;
    }
}

} // namespace

TEST(ConfigText, ReadsAFilterAndAResamplerSpecification)
{
    const char *filter = "type=bandpass; order=4; fpass1=300; fpass2=3400; fs=8000";
    const char *biquads = "biquads=[-0.94, 0.33, 0.1, 0.2, 0.1; -1.1 0.4 0.2 0.4 0.2], nc=2";
    check({
        {filter, "type", "bandpass"},
        {filter, "order", "4"},
        {filter, "fpass1", "300"},
        {filter, "fpass2", "3400"},
        {filter, "fs", "8000"},
        {filter, "fpass", nullptr},
        {biquads, "biquads", "[-0.94, 0.33, 0.1, 0.2, 0.1; -1.1 0.4 0.2 0.4 0.2]"},
        {biquads, "nc", "2"},
        {"type=polyphase,delaycompensation=no", "delaycompensation", "no"},
    });
}

TEST(ConfigText, AnAbsentKeyGivesTheDefault)
{
    char output[128] = "before";
    EXPECT_EQ(KTSTRING_GetStringValueFromString("order=3", "type", "polyphase", output, sizeof output), 1);
    EXPECT_STREQ(output, "polyphase");
    for (const char *config : {"", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(KTSTRING_GetStringValueFromString(config, "type", "lowpass", output, sizeof output), 1);
        EXPECT_STREQ(output, "lowpass");
    }
}

TEST(ConfigText, AnyRunOfSeparatorsStandsBetweenPairs)
{
    check({
        {"a=1;b=2", "b", "2"},
        {"a=1,b=2", "b", "2"},
        {"a=1 b=2", "b", "2"},
        {"a=1\tb=2\nc=3\vd=4\fe=5\rf=6", "b", "2"},
        {"a=1\tb=2\nc=3\vd=4\fe=5\rf=6", "c", "3"},
        {"a=1\tb=2\nc=3\vd=4\fe=5\rf=6", "d", "4"},
        {"a=1\tb=2\nc=3\vd=4\fe=5\rf=6", "e", "5"},
        {"a=1\tb=2\nc=3\vd=4\fe=5\rf=6", "f", "6"},
        {" ;, ;;,,a=1 , ; \n,b=2;;", "a", "1"},
        {" ;, ;;,,a=1 , ; \n,b=2;;", "b", "2"},
        {"", "a", nullptr},
        {" ;,", "a", nullptr},
        {"a=1\x01"
         "b=2\xa0x",
         "a",
         "1\x01"
         "b=2\xa0x"}, // neither is one of the six blanks
    });
}

TEST(ConfigText, BlanksMayStandAroundTheEqualsSign)
{
    check({
        {"a = 1; b =2; c= 3", "a", "1"},
        {"a = 1; b =2; c= 3", "b", "2"},
        {"a = 1; b =2; c= 3", "c", "3"},
        {"a \t\n\v\f\r = \t\n\v\f\r 1", "a", "1"},
        {"a = \"x y\" b", "a", "x y"},
        {"a = [1 2]", "a", "[1 2]"},
        {"a,=1", "a", nullptr}, // only blanks, not the other separators
        {"a=;1", "a", nullptr},
    });
}

TEST(ConfigText, NothingButASeparatorAfterTheEqualsSignIsNoPair)
{
    check({
        {"type=; order=4", "type", nullptr},
        {"type=; order=4", "order", "4"},
        {"type= , order=4", "type", nullptr},
        {"type= , order=4", "order", "4"},
        {"type=", "type", nullptr},
        {"type= ", "type", nullptr},
        {"type = order=4", "type", "order=4"}, // the blank is one of those around '='
        {"type = order=4", "order", nullptr},
        {"a=1 a=", "a", "1"},
    });
}

TEST(ConfigText, KeysAreCaseSensitiveAndWhole)
{
    check({
        {"Ap=1 ap=2 AP=3", "Ap", "1"},
        {"Ap=1 ap=2 AP=3", "ap", "2"},
        {"Ap=1 ap=2 AP=3", "AP", "3"},
        {"Ap=1 ap=2 AP=3", "aP", nullptr},
        {"fpass1=1", "fpass", nullptr},
        {"fpass=1", "fpass1", nullptr},
        {"fpass=1", "pass", nullptr},
        {"=1", "", nullptr},
        {"a=1", "", nullptr},
        {"a=1", "a=1", nullptr},
    });
}

TEST(ConfigText, AKeyIsARunOfAnyOtherCharacters)
{
    check({
        {"a.b-c_d/9{}()'\\=1", "a.b-c_d/9{}()'\\", "1"},
        {"9=1", "9", "1"},
        {"fr\xc3\xa9q=1", "fr\xc3\xa9q", "1"},
        {"\x01\x7f\xff=1", "\x01\x7f\xff", "1"},
        {"a b=1", "a b", nullptr},
        {"a b=1", "a", nullptr},
        {"a b=1", "b", "1"},
        {"a\"b=1 c=2", "b", nullptr},
        {"a\"b=1 c=2", "a\"b", nullptr},
        {"a\"b=1 c=2", "c", "2"},
        {"a[0]=1 c=2", "a", nullptr},
        {"a[0]=1 c=2", "a[0]", nullptr},
        {"a[0]=1 c=2", "c", "2"},
        {"]a=1", "a", nullptr},
        {"]a=1", "]a", nullptr},
        {"a]=1", "a]", nullptr},
        {"[a=1", "[a", nullptr},
        {"\"a=1", "\"a", nullptr},
        {"==1 a=2", "a", "2"},
    });
}

TEST(ConfigText, AWordRunsToTheNextSeparator)
{
    check({
        {"a=b=c;", "a", "b=c"},
        {"a==", "a", "="},
        {"a==1", "a", "=1"},
        {"a=b\"c d\"", "a", "b\"c"},
        {"a=b[1 2]", "a", "b[1"},
        {"a=]1", "a", "]1"},
        {"a=C:\\data\\x.txt b=1", "a", "C:\\data\\x.txt"},
        {"a=\xff\x01", "a", "\xff\x01"},
        {"a=1.50e+0", "a", "1.50e+0"}, // a number asked as text keeps its letters
    });
}

TEST(ConfigText, OfEqualKeysTheLastHolds)
{
    check({
        {"a=1 a=2 b=3", "a", "2"},
        {"a=1 a=\"\"", "a", ""},
        {"a=\"x\" a=[1] a=y", "a", "y"},
        {"a=1 A=2", "a", "1"},
    });
    EXPECT_EQ(lookup::integer("a=1 a=x", "a"), std::nullopt); // also where it is no number
    EXPECT_EQ(lookup::vector("a=[1] a=[x]", "a"), std::nullopt);
}

TEST(ConfigText, QuotesHoldAnyTextAndHaveNoEscapes)
{
    check({
        {"a=\"\" b=1", "a", ""},
        {"a=\"\" b=1", "b", "1"},
        {"a=\"x; y, z=1 [\" z=2", "a", "x; y, z=1 ["},
        {"a=\"x; y, z=1 [\" z=2", "z", "2"},
        {"a=\" x \"", "a", " x "},
        {"a=\"[1 2]\"", "a", "[1 2]"},
        {"a=\"x\\\" b=1", "a", "x\\"},
        {"a=\"x\\\" b=1", "b", "1"},
        {"a=\"x\",b=\"y\";c=\"z\"", "b", "y"},
        {"a=\"x\",b=\"y\";c=\"z\"", "c", "z"},
        {"a=\"two\nlines\"", "a", "two\nlines"},
    });
}

TEST(ConfigText, BracketsRunToTheOneThatClosesThem)
{
    check({
        {"a=[] b=1", "a", "[]"},
        {"a=[] b=1", "b", "1"},
        {"a=[ 1 , 2 ; 3 ]b", "a", nullptr},
        {"a=[ 1 , 2 ; 3 ];b", "a", "[ 1 , 2 ; 3 ]"},
        {"a=[[1 2],[3 4]] b=5", "a", "[[1 2],[3 4]]"},
        {"a=[[1 2],[3 4]] b=5", "b", "5"},
        {"a=[[[x]] [y]] b=5", "a", "[[[x]] [y]]"},
        {"a=[no numbers, b=1; \" ] b=5", "a", "[no numbers, b=1; \" ]"},
        {"a=[no numbers, b=1; \" ] b=5", "b", "5"},
    });
}

TEST(ConfigText, AnUnclosedQuoteOrBracketEndsTheReading)
{
    check({
        {"a=1 b=\"x; c=2", "a", "1"},
        {"a=1 b=\"x; c=2", "b", nullptr},
        {"a=1 b=\"x; c=2", "c", nullptr},
        {"a=1 b=[1 2; c=2", "a", "1"},
        {"a=1 b=[1 2; c=2", "b", nullptr},
        {"a=1 b=[1 2; c=2", "c", nullptr},
        {"b=[[1 2] c=2", "b", nullptr},
        {"b=[[1 2] c=2", "c", nullptr},
        {"a=1 a=\"x", "a", "1"},
        {"a=\"", "a", nullptr},
        {"a=[", "a", nullptr},
    });
}

TEST(ConfigText, WhatSticksToAClosingQuoteOrBracketMakesItNoPair)
{
    check({
        {"a=\"x\"y b=1", "a", nullptr},
        {"a=\"x\"y b=1", "b", "1"},
        {"a=\"x\"b=1", "b", nullptr},
        {"a=\"x\"\"y\" b=1", "a", nullptr},
        {"a=\"x\"\"y\" b=1", "b", "1"},
        {"a=[1][2] b=1", "a", nullptr},
        {"a=[1][2] b=1", "b", "1"},
        {"a=[1]] b=1", "a", nullptr},
        {"a=[1]b=1", "b", nullptr},
        {"a=1 a=\"x\"y", "a", "1"},
    });
}

TEST(ConfigText, WhatElseIsNoPairIsSkippedToTheNextSeparator)
{
    check({
        {"junk a=1", "a", "1"},
        {"junk, =2; a=1", "a", "1"},
        {"= a=1", "a", "1"},
        {"\"x\" a=1", "a", "1"},
        {"[x] a=1", "a", "1"},
        {"\"a=1", "a", nullptr},
        {"\" a=1", "a", "1"}, // a quote or bracket opens only where a value begins
        {"[ a=1 ]", "a", "1"},
        {"x \"y\" = 2 a=1", "a", "1"},
        {"x \"y\" = 2 a=1", "x", nullptr},
    });
}
