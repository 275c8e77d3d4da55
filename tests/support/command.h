// Output of a command line, for tests that ask the tools of the system.
#pragma once

#include "support/program.h"

#include <sstream>

namespace support
{

// The lines that a shell command writes to its standard output. Throws where it cannot be run or fails.
inline std::vector<std::string> linesOf(const std::string &command)
{
    const Folder folder;
    const Outcome outcome = run({"/bin/sh", "-c", command}, folder);
    if (outcome.status != 0)
        throw std::runtime_error("failed: " + command + "\n" + outcome.err);
    std::istringstream text(outcome.out);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

} // namespace support
