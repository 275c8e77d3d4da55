// What is read from a document, and what is found wrong with its programs.
#include "program.h"

#include <gmock/gmock.h>

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const char *const page = R"(# Title

Save this as `hello.c`:

```c
int main(void) { return 0; }
```

```sh
cc hello.c
```

It says:

```text
yes
```

```text
no output
```

```c
puts("one");
```

## Next

```text
no output either
```
)";

std::vector<std::string> faultsOf(const std::string &text)
{
    return readDocument("page.md", text).faults;
}

Block program(const std::string &text, const std::string &output, const std::string &language = "c")
{
    return {"page.md", 10, language, "", "", text, output};
}

} // namespace

TEST(Document, IsReadBlockByBlock)
{
    const Document document = readDocument("page.md", page);
    EXPECT_THAT(document.faults, ElementsAre());
    const struct {
        const char *language, *name, *output;
        size_t line;
        bool fragment;
    } expected[] = {{"c", "hello.c", "", 5, false}, {"sh", "", "yes\n", 9, false},
                    {"text", "", "", 15, false},    {"text", "", "", 19, false},
                    {"c", "", "", 23, true},        {"text", "", "", 29, false}};
    ASSERT_EQ(document.blocks.size(), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(document.blocks[i].language, expected[i].language) << i;
        EXPECT_EQ(document.blocks[i].name, expected[i].name) << i;
        EXPECT_EQ(document.blocks[i].output, expected[i].output) << i;
        EXPECT_EQ(document.blocks[i].line, expected[i].line) << i;
        EXPECT_EQ(document.blocks[i].isFragment(), expected[i].fragment) << i;
    }
    EXPECT_EQ(document.blocks[4].text, "puts(\"one\");\n");
}

TEST(Document, HasNoBlockThatNobodyChecks)
{
    EXPECT_THAT(faultsOf("```\nx\n```\n"), ElementsAre("page.md:1: a block of the language ''"));
    EXPECT_THAT(faultsOf("\n```fortran\nx\n```\n"),
                ElementsAre("page.md:2: a block of the language 'fortran'"));
    EXPECT_THAT(faultsOf("```make\nx\n```\n"), ElementsAre("page.md:1: a file without a name"));
    EXPECT_THAT(faultsOf("`Makefile`:\n```make\nx\n```\n"), ElementsAre());
    EXPECT_THAT(faultsOf("text\n\n    x = 1\n"), ElementsAre("page.md:3: a block without a fence"));
    EXPECT_THAT(faultsOf("- an item that\n    goes on\n"), ElementsAre());
    EXPECT_THAT(faultsOf("```c\nx\n"), ElementsAre("page.md:1: a block without an end"));
    EXPECT_THAT(faultsOf("`a.c`:\n\n```c\nx\n```\n"), ElementsAre("page.md:3: no commands use a.c"));
}

TEST(Document, ShowsFilesThatItDoesNotRun)
{
    const Document document = readDocument(
        "page.md", "See [a.c](../examples/a.c):\n\n```c\nint main(void);\n```\n\n```text\nno output\n```\n");
    EXPECT_THAT(document.faults, ElementsAre());
    ASSERT_EQ(document.blocks.size(), 2u);
    EXPECT_EQ(document.blocks[0].file, "examples/a.c");
    EXPECT_EQ(document.blocks[0].name, "");
    EXPECT_EQ(document.blocks[0].output, "");
    EXPECT_FALSE(document.blocks[0].isRun());
}

TEST(Document, FragmentsWriteTheCommentsAfterTheirPrintfs)
{
    const std::string code =
        "int x = 1; /* one */\nprintf(\"%d\\n\", x);  /* 1 */\nprintf(\"b\\n\"); /* b */\n";
    const auto outputOf = [](const std::string &text) {
        return readDocument("page.md", text).blocks.at(0).output;
    };
    EXPECT_EQ(outputOf("```c\n" + code + "```\n"), "1\nb\n");
    EXPECT_EQ(outputOf("```c\n" + code + "```\n```text\nc\n```\n"), "c\n");
    EXPECT_EQ(outputOf("```c\nint main(void)\n" + code + "```\n"), "");
}

TEST(Document, ExpectsAnyTextForThreeDots)
{
    EXPECT_TRUE(isAsExpected("a.b*\n", "a.b*\n"));
    EXPECT_FALSE(isAsExpected("axb*\n", "a.b*\n"));
    EXPECT_TRUE(isAsExpected("built in Jun  3 2020)\n[x]\n", "built in ...)\n[x]\n"));
    EXPECT_FALSE(isAsExpected("built in\nJun)\n", "built in ...)\n"));
    EXPECT_FALSE(isAsExpected("a\nb\n", "a\n"));
}

TEST(Document, ProgramsAreHeldToWhatItSays)
{
    const std::string hello =
        "#include <stdio.h>\nint main(void)\n{\n    puts(\"hello\");\n    return 0;\n}\n";
    EXPECT_EQ(faultOfProgram(program(hello, "hello\n")), "");
    EXPECT_EQ(faultOfProgram(program(hello, "goodbye\n")), "page.md:10: writes\nhello\nand not\ngoodbye\n");
    EXPECT_EQ(faultOfProgram(program(hello, "")), "page.md:10: writes\nhello\nand not\n");
    EXPECT_EQ(faultOfProgram(program("int main(void) { return 3; }\n", "")), "page.md:10: ends with 3:\n");
    EXPECT_THAT(faultOfProgram(program("int main(void) { return x; }\n", "")),
                StartsWith("page.md:10: does not compile:\npage.md: In function"));
    EXPECT_THAT(faultOfProgram(program("int main(void)\n{\n    int x;\n    return 0;\n}\n", "")),
                HasSubstr("page.md:13:"));
    EXPECT_EQ(faultOfProgram(program("#include <iostream>\nint main()\n{\n    std::cerr << \"log\";\n}\n",
                                     "log", "cpp")),
              "");
}

TEST(Document, FragmentsHaveTheVoiceAtHand)
{
    EXPECT_EQ(faultOfProgram(program("printf(\"%d %d\\n\", length, rate);\n"
                                     "out[length - 1] = voice[length - 1];\n",
                                     "68545 48000\n")),
              "");
    EXPECT_THAT(faultOfProgram(program("int32_t unused;\n", "")),
                HasSubstr("page.md:11:9: error: unused variable"));
}
