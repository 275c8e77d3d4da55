// How a command gives up: it throws a Failure, and the program tells the text in one line and ends with the status.
#pragma once

#include <string>

namespace orva
{

enum { didNotWork = 1, usedWrongly = 2 }; // exit statuses

struct Failure {
    int status;
    std::string text; // empty if it has been told already
};

[[noreturn]] inline void fail(const std::string &text)
{
    throw Failure{didNotWork, text};
}

[[noreturn]] inline void failUse(const std::string &text)
{
    throw Failure{usedWrongly, text};
}

} // namespace orva
