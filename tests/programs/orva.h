// The program orva as a person at a terminal uses it.
#pragma once

#include "program.h"
#include "sounds.h"
#include "support/recording.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

inline support::Outcome orvaRun(const std::vector<std::string> &words, const support::Folder &folder)
{
    return runProgram("orva", words, folder);
}

// A line for the shell, where orva is found.
inline support::Outcome orvaShell(const std::string &line, const support::Folder &folder)
{
    const std::string path = std::string(PROGRAMS_BUILD_DIR) + ":" + std::getenv("PATH");
    return support::run({"env", "PATH=" + path, "bash", "-o", "pipefail", "-c", line}, folder);
}

// Refused with this status and one line, which is `says`; nothing else is written.
inline void expectRefused(const std::vector<std::string> &words, const support::Folder &folder, int status,
                          const std::string &says)
{
    SCOPED_TRACE(testing::PrintToString(words));
    const auto before = folder.entries();
    const support::Outcome outcome = orvaRun(words, folder);
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, says + "\n");
    EXPECT_EQ(folder.entries(), before);
}

inline void putVoice(const support::Folder &folder)
{
    std::filesystem::copy_file(support::recordingPath(), folder.path / "voice.wav");
}

struct Refusal {
    std::vector<std::string> words;
    int status;
    std::string says;
};

// Each is refused so, where voice.wav is.
inline void expectRefusals(const std::vector<Refusal> &refusals)
{
    const support::Folder folder;
    putVoice(folder);
    for (const Refusal &refusal : refusals)
        expectRefused(refusal.words, folder, refusal.status, refusal.says);
}

// Runs the examples of a command's help, lines that begin with "  $ ", one after the other in a folder with the recorded
// voice; the result is their number.
inline int runExamples(const std::string &command)
{
    const support::Folder folder;
    putVoice(folder);
    std::istringstream help(orvaRun({command, "--help"}, folder).out);
    int count = 0;
    for (std::string line; std::getline(help, line);)
        if (line.starts_with("  $ ")) {
            const support::Outcome outcome = orvaShell(line.substr(4), folder);
            EXPECT_EQ(outcome.status, 0) << line << '\n' << outcome.err;
            EXPECT_EQ(outcome.err, "") << line;
            ++count;
        }
    return count;
}
