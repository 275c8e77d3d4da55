// The code blocks of a Markdown document, and what a reader does with each.
//
// A block is fenced and names its language:
//   c, cpp       a program, compiled and run. A C block without a main is a fragment: it stands in the main of
//                fragment.c, with what is declared there.
//   sh           commands, run in a folder that holds the named files of the document
//   console      commands after "$ " that no test can run, since they need root, packages or a whole build: what they
//                name has to be there
//   cmake, make  files that the commands need
//   python       a program for the package orva, which python/tests/test_guides.py runs
//   text         what the program or the commands right before it write, where "..." stands for any text within a line;
//                anything else elsewhere
// A fragment without such a text writes what stands in comments after its printf lines, a line each.
// A line above a block that ends in "`name`:" names the file that the block is saved as. A named program is not run by
// itself, but by the document's commands. One that ends in "[name.c](../examples/name.c):" says that the block is that
// file; the tests of the examples run it.
#pragma once

#include "support/folder.h"
#include "support/pattern.h"

#include <sstream>

struct Block {
    std::string document;
    size_t line = 0; // of its fence, counted from 1
    std::string language;
    std::string name; // of the file that it is saved as, or empty
    std::string file; // of the project that it shows, such as examples/fft.c, or empty
    std::string text;
    std::string output; // that it is to give

    bool isProgram() const
    {
        return language == "c" || language == "cpp";
    }

    // Whether it is a program that nothing but the document holds.
    bool isRun() const
    {
        return isProgram() && file.empty();
    }

    bool isFragment() const
    {
        return language == "c" && !support::Pattern(R"((^|\n)int main\()").firstIn(text);
    }

    std::string place() const
    {
        return document + ":" + std::to_string(line);
    }
};

struct Document {
    std::string path; // from the root of the project
    std::vector<Block> blocks;
    std::vector<std::string> faults; // what its reader can do nothing with
};

// What is wrong with a block, whatever it says.
inline std::string faultOf(const Block &block)
{
    static const std::vector<std::string> languages{"c",    "cpp",    "sh",   "console", "cmake",
                                                    "make", "python", "text", "toml"};
    if (std::find(languages.begin(), languages.end(), block.language) == languages.end())
        return "a block of the language '" + block.language + "'";
    if ((block.language == "cmake" || block.language == "make") && block.name.empty())
        return "a file without a name";
    return "";
}

// The comments after the printf lines of a fragment.
inline std::string commentsOf(const std::string &fragment)
{
    static const support::Pattern line(R"( *printf\(.*\); +/\* (.*) \*/\n)");
    std::string comments;
    for (const auto &groups : line.allIn(fragment))
        comments += groups[1] + "\n";
    return comments;
}

inline Document readDocument(const std::string &path, const std::string &content)
{
    Document document{path, {}, {}};
    auto &blocks = document.blocks;
    const auto fault = [&](size_t line, const std::string &what) {
        document.faults.push_back(path + ":" + std::to_string(line) + ": " + what);
    };

    std::istringstream lines(content);
    std::string line;
    std::string above; // the last line that is not empty
    bool behindEmpty = true;
    bool within = false;
    const size_t none = SIZE_MAX;
    size_t giver = none;  // the block that a text block here would be the output of
    size_t output = none; // the block that this text block is the output of
    for (size_t number = 1; std::getline(lines, line); ++number) {
        if (within && line == "```") {
            within = false;
        } else if (within) {
            blocks.back().text += line + "\n";
            if (output != none)
                blocks[output].output += line + "\n";
        } else if (line.starts_with("```")) {
            Block block{path, number, line.substr(3), "", "", "", ""};
            if (const auto name = support::Pattern("`([A-Za-z0-9_.]+)`:$").firstIn(above))
                block.name = (*name)[1];
            if (const auto file = support::Pattern(R"(\]\(\.\./(examples/[a-z]+\.c)\):$)").firstIn(above))
                block.file = (*file)[1];
            output = block.language == "text" ? giver : none;
            giver = block.isRun() || block.language == "sh" ? blocks.size() : none;
            if (const std::string what = faultOf(block); !what.empty())
                fault(number, what);
            blocks.push_back(block);
            within = true;
        } else if (line.starts_with("#")) {
            giver = none;
        } else if (line.starts_with("    ") && behindEmpty) {
            fault(number, "a block without a fence");
        }
        behindEmpty = line.empty();
        if (!line.empty())
            above = line;
    }
    if (within)
        fault(blocks.back().line, "a block without an end");

    for (auto &block : blocks) {
        if (block.isFragment() && block.output.empty())
            block.output = commentsOf(block.text);
        const auto calls = [&](const Block &other) {
            return other.language == "sh" && other.text.find(block.name) != std::string::npos;
        };
        if (!block.name.empty() && block.isProgram() && std::none_of(blocks.begin(), blocks.end(), calls))
            fault(block.line, "no commands use " + block.name);
    }
    return document;
}

// README.md, CONTRIBUTING.md and the documents of docs/.
inline std::vector<Document> projectDocuments()
{
    namespace fs = std::filesystem;
    const fs::path project = PROJECT_SOURCE_DIR;
    std::vector<std::string> paths{"README.md"};
    if (fs::exists(project / "CONTRIBUTING.md"))
        paths.emplace_back("CONTRIBUTING.md");
    for (const auto &entry : fs::directory_iterator(project / "docs"))
        if (entry.path().extension() == ".md")
            paths.push_back("docs/" + entry.path().filename().string());
    std::sort(paths.begin(), paths.end());

    std::vector<Document> documents;
    for (const auto &path : paths)
        documents.push_back(readDocument(path, support::readFile(project / path)));
    return documents;
}
