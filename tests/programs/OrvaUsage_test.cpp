// How the program orva is used: help, version, and what it says of words that it does not know.
#include "orva.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::HasSubstr;

// The commands that the help names.
std::vector<std::string> commands()
{
    const support::Folder folder;
    std::istringstream help(orvaRun({"--help"}, folder).out);
    std::vector<std::string> names;
    bool listed = false;
    for (std::string line; std::getline(help, line);) {
        if (listed && line.starts_with("  ") && line[2] != ' ')
            names.push_back(line.substr(2, line.find(' ', 2) - 2));
        listed = listed || line == "Subcommands:";
    }
    return names;
}

} // namespace

TEST(OrvaUsage, HelpAndVersionGoToStandardOutput)
{
    const support::Folder folder;
    for (const char *option : {"--help", "-h"}) {
        const support::Outcome outcome = orvaRun({option}, folder);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, HasSubstr("Usage: orva"));
        EXPECT_EQ(outcome.err, "");
    }
    const support::Outcome version = orvaRun({"--version"}, folder);
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.out.starts_with("liborva version ")) << version.out;
    EXPECT_EQ(version.err, "");
}

TEST(OrvaUsage, EveryCommandHasHelpWithExamplesThatRun)
{
    const auto names = commands();
    ASSERT_THAT(names, testing::IsSupersetOf({"curve", "delay", "denoise", "filter", "info", "lapped",
                                              "measures", "resample", "response", "stretch", "twice"}));
    for (const auto &name : names) {
        const support::Folder folder;
        const support::Outcome outcome = orvaRun({name, "--help"}, folder);
        EXPECT_EQ(outcome.status, 0) << name;
        EXPECT_THAT(outcome.out, HasSubstr("Usage: orva " + name));
        EXPECT_GE(runExamples(name), 2) << name;
    }
}

TEST(OrvaUsage, WrongWordsEndWithStatusTwoAndTheNearestRightOne)
{
    const support::Folder folder;
    putVoice(folder);
    const struct {
        std::vector<std::string> words;
        const char *says;
    } cases[] = {
        {{}, "orva: a command is missing; see 'orva --help'"},
        {{""}, "orva: there is no command ''; see 'orva --help'"},
        {{"resmaple"}, "orva: there is no command 'resmaple', did you mean 'resample'?; see 'orva --help'"},
        {{"inf", "voice.wav"}, "orva: there is no command 'inf', did you mean 'info'?; see 'orva --help'"},
        {{"applaud"}, "orva: there is no command 'applaud'; see 'orva --help'"},
        {{"--verson"}, "orva: there is no option '--verson', did you mean '--version'?; see 'orva --help'"},
        {{"info", "--jsn", "voice.wav"},
         "orva: there is no option '--jsn', did you mean '--json'?; see 'orva info --help'"},
        {{"resample", "a", "b", "--rat=8k"},
         "orva: there is no option '--rat', did you mean '--rate'?; see 'orva resample --help'"},
        {{"resample", "--nonsense"}, "orva: there is no option '--nonsense'; see 'orva resample --help'"},
        {{"info"}, "orva info: files is required; see 'orva info --help'"},
    };
    for (const auto &[words, says] : cases)
        expectRefused(words, folder, 2, says);
}

TEST(OrvaUsage, TellsWhereStandardOutputIsFull)
{
    const support::Folder folder;
    const support::Outcome outcome = orvaShell("orva --help >/dev/full", folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "orva: standard output: No space left on device\n");
}
