// Texts of any bytes, such as the names of files, in output that is read by lines or as JSON.
#pragma once

#include <string>

namespace orva
{

// In quotes, with what is not UTF-8 as U+FFFD.
std::string jsonText(const std::string &bytes);

// With control characters as question marks.
std::string onOneLine(std::string text);

} // namespace orva
