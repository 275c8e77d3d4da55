// Texts of any bytes, such as the names of files, in JSON.
#pragma once

#include <string>

namespace orva
{

// In quotes, with what is not UTF-8 as U+FFFD.
std::string jsonText(const std::string &bytes);
} // namespace orva
