// The example programs of this build.
#pragma once

#include "support/program.h"

inline std::string programPath(const std::string &name)
{
    return std::string(EXAMPLES_BUILD_DIR) + "/" + name;
}

inline support::Outcome runExample(const std::string &name, const std::vector<std::string> &arguments,
                                   const support::Folder &folder)
{
    std::vector<std::string> words{programPath(name)};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return support::run(words, folder);
}
