// The interface as a whole: what the library exports, what its list holds, and a host that calls all of it.
#include "interface.h"
#include "names.h"
#include "support/command.h"
#include "support/pattern.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{

Names wholeInterface()
{
    Names names;
    for (const Family &family : interfaceFamilies)
        names.insert(family.functions.begin(), family.functions.end());
    return names;
}

Names exported()
{
    Names names;
    for (const auto &line : support::linesOf("nm -D --defined-only " LIBORVA)) {
        std::string address, type, name;
        std::istringstream(line) >> address >> type >> name;
        if (type != "A") // the version node
            names.insert(name.substr(0, name.find('@')));
    }
    return names;
}

std::vector<Family> listed()
{
    std::vector<Family> families;
    std::istringstream lines(support::readFile(SOURCE_DIR "/src/exports.txt"));
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('['))
            families.push_back({line.substr(1, line.size() - 2), {}});
        else if (!line.empty() && !line.starts_with('#'))
            families.at(families.size() - 1).functions.push_back(line);
    }
    return families;
}

// The code of the host, without what only looks like a call: comments and texts.
std::string hostCode()
{
    static const support::Pattern passive(R"(/\*[^]*?\*/|"[^"\n]*")");
    std::string code;
    for (const auto &entry : std::filesystem::directory_iterator(SOURCE_DIR "/tests/library/every_function"))
        code += passive.replacedIn(support::readFile(entry.path()), "");
    return code;
}

} // namespace

TEST(WholeInterface, HasSeventyTwoFunctions)
{
    EXPECT_EQ(wholeInterface().size(), 72U);
}

TEST(WholeInterface, IsWhatTheLibraryExports)
{
    const Names names = exported();
    for (const Family &family : interfaceFamilies)
        EXPECT_EQ(missing(names, Names(family.functions.begin(), family.functions.end())), Names{})
            << "not exported, of the family " << family.name;
    EXPECT_EQ(missing(wholeInterface(), names), Names{}) << "exported, but not of the interface";
}

TEST(WholeInterface, IsListedByFamilyInOrder)
{
    const auto families = listed();
    ASSERT_EQ(families.size(), interfaceFamilies.size());
    for (size_t i = 0; i < families.size(); ++i) {
        EXPECT_EQ(families[i].name, interfaceFamilies[i].name);
        EXPECT_EQ(families[i].functions, interfaceFamilies[i].functions) << families[i].name;
    }
}

TEST(WholeInterface, IsCalledAsAWholeByTheHost)
{
    const std::string code = hostCode();
    for (const std::string &name : wholeInterface())
        EXPECT_TRUE(support::Pattern("\\b" + name + R"(\()").firstIn(code)) << name << " is not called";
    for (const auto &include : support::Pattern(R"(#include <orva/(\w+\.h)>)").allIn(code))
        EXPECT_EQ(include[1], "orva.h") << "the host knows no other header";
}

TEST(WholeInterface, AHostWrittenInCCallsEveryFunctionAndIsRight)
{
    const support::Folder folder; // for the wisdom store
    const support::Outcome outcome =
        support::run({"env", "KT_DATA_PATH=" + folder.path.string(), EVERY_FUNCTION}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(support::Pattern(R"(\d{3,} checks, 0 do not hold\n)").match(outcome.out)) << outcome.out;
}
