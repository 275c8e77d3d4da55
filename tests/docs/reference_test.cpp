// The documents and the reference of the public headers are complete, and would not be made if they were not.
#include "support/program.h"

#include <gtest/gtest.h>

namespace
{

namespace fs = std::filesystem;

const fs::path project = PROJECT_SOURCE_DIR;

// A project that has a front page and no headers; what it needs is installed.
void makeProject(const support::Folder &folder, const std::string &page = "# Title\n")
{
    for (const char *part : {"script", "docs/images", "include/orva", "kett/include/kett"})
        fs::create_directories(folder.path / part);
    for (const char *part :
         {"script/common.sh", "script/docs", "docs/Doxyfile", "docs/pages.py", "docs/pages.css"})
        fs::copy(project / part, folder.path / part);
    fs::create_symlink("/bin/true", folder.path / "script/bootstrap");
    support::writeFile(folder / "docs/README.md", page);
}

const char *const header = R"(/** @file
 *  What it is for.
 */
#include <stdbool.h>
#include <stdint.h>

#define ORVA_API __attribute__((visibility("default"))) /**< exported */

/** A record. */
typedef struct {
    float re; /**< one part */
    float im; /**< the other */
} ORVA_RECORD;

/** Does it.
 *
 *  @param first   a number.
 *  @param second  another.
 *  @return        true.
 */
ORVA_API bool ORVA_Do(int32_t first, int32_t second);
)";

const char *const incomplete = "docs: the documents or the reference are not complete\n";

// Makes the reference of that header with one piece taken out or replaced.
support::Outcome referenceWithout(const std::string &piece, const std::string &other = "")
{
    const support::Folder folder;
    makeProject(folder);
    std::string text = header;
    if (!piece.empty())
        text.replace(text.find(piece), piece.size(), other);
    support::writeFile(folder / "include/orva/ORVA.h", text);
    return support::run({folder / "script/docs"}, folder);
}

} // namespace

TEST(Reference, DescribesEverythingInThePublicHeaders)
{
    const support::Folder folder;
    for (const auto &entry : fs::directory_iterator(project))
        if (entry.path().filename() != "build")
            fs::create_symlink(entry.path(), folder.path / entry.path().filename());
    for (const char *part : {"docs", "script"}) {
        fs::remove(folder.path / part);
        fs::copy(project / part, folder.path / part, fs::copy_options::recursive);
    }
    fs::remove(folder.path / "script/bootstrap");
    fs::create_symlink("/bin/true", folder.path / "script/bootstrap");
    const support::Outcome outcome = support::run({folder / "script/docs"}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "docs: wrote " + folder.path.string() + "/build/docs/html/index.html\n");
    EXPECT_NE(support::readFile(folder / "build/docs/html/ORVAwinfnc_8h.html").find("ORVA_CreateWindow"),
              std::string::npos);
}

TEST(Reference, FailsWhereADescriptionIsMissing)
{
    EXPECT_EQ(referenceWithout("").err, "");
    const struct {
        const char *piece;
        const char *other;
        const char *names; // what the message has to name
    } cases[] = {
        {" *  @param second  another.\n", "", "parameter 'second'"},
        {" *  @param first   a number.\n *  @param second  another.\n", "", "ORVA_Do"},
        {"second  another.", "second", "@param second"},
        {"second  another.", "third  another.", "third"},
        {" *  @return        true.\n", "", "return type of member ORVA_Do"},
        {"@return        true.", "@return", "@return"},
        {"/** Does it.", "/* Does it.", "ORVA_Do"},
        {"/** A record. */", "", "ORVA_RECORD"},
        {" /**< the other */", "", "im "},
        {" /**< exported */", "", "ORVA_API"},
        {"What it is for.", "@see ORVA_Undo() and #ORVA_UNDO", "ORVA_UNDO"},
    };
    for (const auto &c : cases) {
        const support::Outcome outcome = referenceWithout(c.piece, c.other);
        EXPECT_EQ(outcome.status, 1) << c.piece;
        EXPECT_NE(outcome.err.find(c.names), std::string::npos) << c.piece << " gives: " << outcome.err;
        EXPECT_TRUE(outcome.err.ends_with(incomplete)) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
}

TEST(Documents, FailWhereALinkLeadsNowhere)
{
    const struct {
        const char *line;
        const char *fault;
    } cases[] = {
        {"[a](other.md)", "other.md: no such file"},
        {"[a](../include/orva/ORVA.h) and [b](../x.c)", "../x.c: no such file"},
        {"![a](images/a.png)", "images/a.png: no such file"},
        {"![a](Doxyfile)", "Doxyfile: no image"},
        {"[a](#titel)", "#titel: no such heading"},
        {"[a](README.md#two)", "README.md#two: no such heading"},
        {"[a](../script/docs#a)", "../script/docs#a: no such heading"},
        {"[a](../script)", "../script: a folder is no page"},
        {"[a](../../x.md)", "../../x.md: leads out of the project"},
        {"[a]: x.md", "write links as [text](target)"},
        {"<img src='x.png'>", "write links as [text](target)"},
    };
    for (const auto &c : cases) {
        const support::Folder folder;
        makeProject(folder, std::string("# Title\n\n") + c.line + "\n");
        support::writeFile(folder / "include/orva/ORVA.h", header);
        const support::Outcome outcome = support::run({folder / "docs/pages.py", "check"}, folder);
        EXPECT_EQ(outcome.status, 1) << c.line;
        EXPECT_EQ(outcome.err, std::string("docs/README.md:3: ") + c.fault + "\n");
        EXPECT_EQ(outcome.out, "");
    }
}

TEST(Documents, LinkToEachOtherAndToFilesOfTheProject)
{
    const support::Folder folder;
    makeProject(folder,
                "# Front\n\n[a](other.md#a-b) [b](#front) [c](../include/orva/ORVA.h) [d](../script/docs)\n"
                "[e](https://example.org/x) `[f](g)`\n\n```text\n[h](i)\n```\n");
    support::writeFile(folder / "docs/other.md", "# Other\n\n## A, `b`!\n\n[a](README.md#front)\n");
    support::writeFile(folder / "README.md", "[a](docs) [b](docs/other.md#a-b)\n");
    support::writeFile(folder / "include/orva/ORVA.h", header);
    const support::Outcome outcome = support::run({folder / "script/docs"}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    const std::string page = support::readFile(folder / "build/docs/html/index.html");
    for (const char *link : {"other.html#other-a-b", "index.html#front", "ORVA_8h.html",
                             "sources/script/docs", "https://example.org/x"})
        EXPECT_NE(page.find("href=\"" + std::string(link) + "\""), std::string::npos) << link;
    EXPECT_EQ(support::readFile(folder / "build/docs/html/sources/script/docs"),
              support::readFile(project / "script/docs"));
}

TEST(Documents, FailWhereADocumentOrAPageHasABrokenLink)
{
    const support::Folder folder;
    makeProject(folder, "# Front\n\n[a](b.md)\n");
    support::writeFile(folder / "include/orva/ORVA.h", header);
    const support::Outcome outcome = support::run({folder / "script/docs"}, folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.err.starts_with("docs/README.md:3: b.md: no such file\n")) << outcome.err;
    EXPECT_TRUE(outcome.err.ends_with(incomplete)) << outcome.err;

    support::writeFile(folder / "build/docs/html/page.html",
                       "<a href='x.html'>x</a><p id='y'><a href='#z'>z</a>");
    const support::Outcome pages =
        support::run({folder / "docs/pages.py", "html", folder / "build/docs/html"}, folder);
    EXPECT_EQ(pages.status, 1);
    EXPECT_NE(pages.err.find("page.html: x.html: no such file\npage.html: #z: no such place\n"),
              std::string::npos);
}
