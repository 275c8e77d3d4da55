// The reference of the public headers is complete, and would not be made if it were not.
#include "support/program.h"

#include <gtest/gtest.h>

namespace
{

namespace fs = std::filesystem;

const fs::path project = PROJECT_SOURCE_DIR;

// A project that is nothing but its documents; what it needs is installed.
void makeProject(const support::Folder &folder)
{
    fs::create_directories(folder.path / "script");
    fs::create_directories(folder.path / "include/orva");
    fs::create_directories(folder.path / "kett/include/kett");
    fs::copy(project / "docs", folder.path / "docs", fs::copy_options::recursive);
    fs::copy(project / "script/docs", folder.path / "script/docs");
    fs::create_symlink("/bin/true", folder.path / "script/bootstrap");
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
    makeProject(folder);
    fs::copy(project / "include", folder.path / "include", fs::copy_options::recursive);
    fs::copy(project / "kett/include", folder.path / "kett/include", fs::copy_options::recursive);
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
        EXPECT_TRUE(outcome.err.ends_with("docs: the reference is not complete\n")) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
}
