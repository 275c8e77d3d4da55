// Each family has a first program, which writes what its own comment says, and says why where it cannot.
#include "example.h"
#include "support/environment.h"

#include <gtest/gtest.h>

namespace
{

namespace fs = std::filesystem;

// A program that gives up leaves its memory to the system.
support::Outcome runRefused(const support::Folder &folder, const std::string &command)
{
    support::setVariable("ASAN_OPTIONS", "detect_leaks=0");
    return runIn(folder, command);
}

bool readsSound(const Example &example)
{
    return example.command.find(".wav") != std::string::npos;
}

bool writesSound(const Example &example)
{
    const std::string &command = example.command;
    return std::count(command.begin(), command.end(), ' ') >= 2;
}

} // namespace

TEST(Examples, StandForAllFamilies)
{
    std::vector<std::string> names;
    for (const auto &example : examples())
        names.push_back(example.name);
    std::vector<std::string> families;
    for (const auto &entry : fs::directory_iterator(PROJECT_SOURCE_DIR "/src"))
        if (entry.is_directory() && entry.path().filename() != "common" &&
            entry.path().filename() != "platform")
            families.push_back(entry.path().filename().string());
    std::sort(families.begin(), families.end());
    EXPECT_EQ(names, families);
}

TEST(Examples, WriteWhatTheirCommentSays)
{
    for (const auto &example : examples())
        if (example.name !=
            "noisesup") // which has a test of its own, since not every system has what it needs
            expectItsOutput(example);
}

TEST(Examples, SayWhatTheyTakeWhereASoundIsMissingOrNone)
{
    const support::Folder folder;
    writeSounds(folder);
    support::writeFile(folder / "text.wav", "no sound");
    for (const auto &example : examples()) {
        if (!readsSound(example))
            continue;
        const std::string program = "./" + example.name;
        const std::string output = writesSound(example) ? " out.wav" : "";
        for (const auto &command :
             {program, program + " none.wav" + output, program + " text.wav" + output}) {
            const support::Outcome outcome = runRefused(folder, command);
            EXPECT_EQ(outcome.status, 1) << command;
            EXPECT_EQ(outcome.out, "") << command;
            EXPECT_TRUE(outcome.err.starts_with("usage: " + example.name + " "))
                << command << ": " << outcome.err;
            EXPECT_FALSE(fs::exists(folder / "out.wav")) << command;
        }
    }
}

TEST(Examples, SayWhatTheyTakeWhereTheirOutputCannotBeWritten)
{
    const support::Folder folder;
    writeSounds(folder);
    size_t count = 0;
    for (const auto &example : examples()) {
        if (!writesSound(example))
            continue;
        std::string command = example.command; // its last word is the output
        command.replace(command.rfind(' ') + 1, std::string::npos, "none/out.wav");
        const support::Outcome outcome = runRefused(folder, command);
        EXPECT_EQ(outcome.status, 1) << command;
        EXPECT_TRUE(outcome.err.starts_with("usage: " + example.name + " "))
            << command << ": " << outcome.err;
        ++count;
    }
    EXPECT_GT(count, 0u);
}
