// Output of a command line, for tests that ask the tools of the system.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace support
{

// The lines that a shell command writes to its standard output. Throws where it cannot be run or fails.
inline std::vector<std::string> linesOf(const std::string &command)
{
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run: " + command);
    std::vector<std::string> lines;
    std::string line;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        if (c != '\n') {
            line += static_cast<char>(c);
            continue;
        }
        lines.push_back(line);
        line.clear();
    }
    if (pclose(pipe) != 0)
        throw std::runtime_error("failed: " + command);
    return lines;
}

} // namespace support
