// The example programs of this build.
#pragma once

#include "support/program.h"

inline std::string programPath(const std::string &name)
{
    return std::string(EXAMPLES_BUILD_DIR) + "/" + name;
}

inline std::vector<std::string> exampleCommand(const std::string &name,
                                               const std::vector<std::string> &arguments)
{
    std::vector<std::string> words{programPath(name)};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

inline support::Outcome runExample(const std::string &name, const std::vector<std::string> &arguments,
                                   const support::Folder &folder)
{
    return support::run(exampleCommand(name, arguments), folder);
}

// The most memory that it had at a time, in kilobytes.
inline long peakOfExample(const std::string &name, const std::vector<std::string> &arguments,
                          const support::Folder &folder)
{
    return support::peakOf(exampleCommand(name, arguments), folder);
}
