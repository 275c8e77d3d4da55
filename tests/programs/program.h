// The programs of this build.
#pragma once

#include "support/program.h"

inline std::string programPath(const std::string &name)
{
    return std::string(PROGRAMS_BUILD_DIR) + "/" + name;
}

inline std::vector<std::string> programCommand(const std::string &name,
                                               const std::vector<std::string> &arguments)
{
    std::vector<std::string> words{programPath(name)};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

inline support::Outcome runProgram(const std::string &name, const std::vector<std::string> &arguments,
                                   const support::Folder &folder)
{
    return support::run(programCommand(name, arguments), folder);
}

// The most memory that it had at a time, in kilobytes.
inline long peakOfProgram(const std::string &name, const std::vector<std::string> &arguments,
                          const support::Folder &folder)
{
    return support::peakOf(programCommand(name, arguments), folder);
}

// Where no file may grow beyond 8 blocks; without the signal, a write that would then fails as on a full disk.
inline support::Outcome runProgramOnFullDisk(const std::string &name,
                                             const std::vector<std::string> &arguments,
                                             const support::Folder &folder)
{
    std::vector<std::string> words{"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 8; exec \"$@\"", "sh"};
    for (const std::string &word : programCommand(name, arguments))
        words.push_back(word);
    return support::run(words, folder);
}
