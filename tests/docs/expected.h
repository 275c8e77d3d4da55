// What a document says that a program writes.
#pragma once

#include <regex>
#include <string>

// Whether a text is as expected, where "..." stands for any text within a line.
inline bool isAsExpected(const std::string &text, const std::string &expected)
{
    std::string pattern = std::regex_replace(expected, std::regex(R"([\^$\\.*+?()\[\]{}|])"), R"(\$&)");
    pattern = std::regex_replace(pattern, std::regex(R"(\\\.\\\.\\\.)"), "[^\n]*");
    return std::regex_match(text, std::regex(pattern));
}
