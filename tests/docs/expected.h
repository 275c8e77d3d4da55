// What a document says that a program writes.
#pragma once

#include "support/pattern.h"

#include <string>

// Whether a text is as expected, where "..." stands for any text within a line.
inline bool isAsExpected(const std::string &text, const std::string &expected)
{
    using support::Pattern;
    std::string pattern = Pattern(R"([\^$\\.*+?()\[\]{}|])").replacedIn(expected, R"(\$&)");
    pattern = Pattern(R"(\\\.\\\.\\\.)").replacedIn(pattern, "[^\n]*");
    return Pattern(pattern).match(text).has_value();
}
