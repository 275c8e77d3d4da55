// What the program says: one line a message, whatever control characters its text holds (a file's name may hold a line
// feed).
#pragma once

#include <string>

namespace orva
{

// The text with '?' in the place of each control character.
std::string onOneLine(std::string text);

// Tells a result, on standard output.
void say(const std::string &text);

// Tells, on standard error, what the program made of an input that it goes on with, or why it gives up.
void note(const std::string &text);

} // namespace orva
