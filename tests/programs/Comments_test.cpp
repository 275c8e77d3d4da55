// The comment of each program shows what it prints.
#include "program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace
{

struct Run {
    std::string command;
    std::string expected;
};

// The runs that the first comment of a source shows: " *     $ command", and the lines below it as far in as
// that.
std::vector<Run> runsIn(const std::string &source)
{
    const std::string indent = " *     ";
    std::vector<Run> runs;
    std::istringstream lines(source);
    for (std::string line; std::getline(lines, line) && line != " */";) {
        if (!line.starts_with(indent))
            continue;
        const std::string text = line.substr(indent.size());
        if (text.starts_with("$ "))
            runs.push_back({text.substr(2), ""});
        else if (!runs.empty())
            runs.back().expected += text + "\n";
    }
    return runs;
}

std::vector<std::filesystem::path> sources()
{
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(PROGRAMS_SOURCE_DIR))
        if (entry.path().extension() == ".c")
            paths.push_back(entry.path());
    return paths;
}

} // namespace

TEST(ProgramComments, ShowWhatTheProgramsPrint)
{
    ASSERT_FALSE(sources().empty());
    for (const auto &path : sources()) {
        const auto runs = runsIn(support::readFile(path));
        EXPECT_FALSE(runs.empty()) << path << " shows no run";
        for (const auto &shown : runs) {
            const support::Folder folder;
            for (const auto &entry : std::filesystem::directory_iterator("/usr/share/sounds/alsa"))
                std::filesystem::create_symlink(entry.path(), folder.path / entry.path().filename());
            const std::string command = "PATH='" PROGRAMS_BUILD_DIR "':$PATH; " + shown.command;
            const support::Outcome outcome = support::run({"/bin/sh", "-c", command}, folder);
            EXPECT_EQ(outcome.status, 0) << shown.command;
            EXPECT_EQ(outcome.out, shown.expected) << shown.command;
            EXPECT_EQ(outcome.err, "") << shown.command;
        }
    }
}
