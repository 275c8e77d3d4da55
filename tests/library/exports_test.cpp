// What the two libraries show to the outside: the names of their lists and nothing else.
#include "names.h"
#include "support/command.h"
#include "support/pattern.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace
{

struct Library {
    std::string path;
    std::string soname;
    std::string node; // version that every exported name carries
    std::string list;
    std::string headers;
    std::string mark; // what a header writes in front of an exported function
};

const Library libraries[] = {
    {LIBORVA, "liborva.so.3", "ORVA_3.7", SOURCE_DIR "/src/exports.txt", SOURCE_DIR "/include/orva",
     "ORVA_API"},
    {LIBKETT, "libkett.so.1", "KETT_1.0", SOURCE_DIR "/kett/exports.txt", SOURCE_DIR "/kett/include/kett",
     "KT_API"},
};

Names listed(const Library &library)
{
    Names names;
    std::ifstream file(library.list);
    for (std::string line; std::getline(file, line);)
        if (!line.empty() && line[0] != '#' && line[0] != '[')
            names.insert(line);
    return names;
}

struct Symbol {
    std::string name; // with its version, as in name@@node
    std::string type; // nm's letter
};

std::vector<Symbol> exported(const Library &library)
{
    std::vector<Symbol> symbols;
    for (const auto &line : support::linesOf("nm -D --defined-only --with-symbol-versions " + library.path)) {
        Symbol symbol;
        std::string address;
        std::istringstream(line) >> address >> symbol.type >> symbol.name;
        symbols.push_back(symbol);
    }
    return symbols;
}

// By hand, since a regular expression takes stack for every character that it goes through.
std::string withoutComments(std::string text)
{
    for (size_t at = 0; (at = text.find("/*", at)) != std::string::npos;)
        text.erase(at, text.find("*/", at) + 2 - at);
    return text;
}

Names declared(const Library &library)
{
    const support::Pattern declaration("\\n" + library.mark + R"(\s[^;(]*?(\w+)\s*\()");
    Names names;
    for (const auto &entry : std::filesystem::directory_iterator(library.headers)) {
        std::ifstream file(entry.path());
        const std::string text = withoutComments({std::istreambuf_iterator<char>(file), {}});
        for (const auto &groups : declaration.allIn(text))
            names.insert(groups[1]);
    }
    return names;
}

} // namespace

TEST(Exports, TheListIsWhatIsExported)
{
    for (const Library &library : libraries) {
        SCOPED_TRACE(library.path);
        Names names;
        for (const Symbol &symbol : exported(library)) {
            const auto [name, node] = std::pair(symbol.name.substr(0, symbol.name.find('@')),
                                                symbol.name.substr(symbol.name.find('@') + 1));
            if (symbol.type == "A" && name == library.node)
                continue;                                                    // the version node itself
            EXPECT_EQ(symbol.type, "T") << symbol.name << " is no function"; // 'u' would be a unique symbol
            EXPECT_EQ(node, "@" + library.node) << symbol.name;
            names.insert(name);
        }
        EXPECT_EQ(missing(names, listed(library)), Names{}) << "listed, but not exported";
        EXPECT_EQ(missing(listed(library), names), Names{}) << "exported, but not listed";
        EXPECT_FALSE(names.empty());
    }
}

TEST(Exports, TheHeadersDeclareWhatIsListed)
{
    for (const Library &library : libraries) {
        SCOPED_TRACE(library.headers);
        EXPECT_EQ(missing(declared(library), listed(library)), Names{}) << "listed, but in no header";
        EXPECT_EQ(missing(listed(library), declared(library)), Names{}) << "in a header, but not listed";
    }
}

TEST(Exports, TheLibraryAnnouncesItsMajorVersion)
{
    for (const Library &library : libraries) {
        SCOPED_TRACE(library.path);
        Names sonames;
        static const support::Pattern pattern(R"(.*\(SONAME\).*\[(.*)\])");
        for (const auto &line : support::linesOf("readelf -d -W " + library.path))
            if (const auto groups = pattern.match(line))
                sonames.insert((*groups)[1]);
        EXPECT_EQ(sonames, Names{library.soname});
    }
}
