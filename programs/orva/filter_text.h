// The text that tells a filter, read with care. The library itself gives a default for whatever it cannot read; a program
// for people says what is wrong.
#pragma once

#include <string>

namespace orva
{

// Refuses, as used wrongly, text that is no key=value pair, a key that no filter has, and a value that is not what its key
// asks for, at that sampling rate.
void checkFilterText(const std::string &text, int rate);

} // namespace orva
