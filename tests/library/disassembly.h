// The instructions of object files and libraries, as objdump shows them.
#pragma once

#include "support/command.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

struct Instruction {
    std::string name;
    std::string operands;
};

using Predicate = std::function<bool(const Instruction &)>;

struct Scan {
    size_t instructionCount = 0; // looked at
    Lines found;
};

// Adds what `isWanted` holds of in a file.
inline void scan(const std::string &file, const Predicate &isWanted, Scan &result)
{
    for (const auto &line : support::linesOf("'" OBJDUMP "' -d --no-show-raw-insn '" + file + "'")) {
        const size_t tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        ++result.instructionCount;
        const size_t end = std::min(line.find_first_of(" \t", tab + 1), line.size());
        if (isWanted({line.substr(tab + 1, end - tab - 1), line.substr(end)}))
            result.found.push_back(file + ":" + line);
    }
}

inline Scan scanOf(const std::string &file, const Predicate &isWanted)
{
    Scan result;
    scan(file, isWanted, result);
    return result;
}
