// How large a PNG is on paper.
#pragma once

#include <string>

namespace orva
{

// Puts a chunk with the dots per inch, which Cairo leaves out, after the head of a PNG.
void tellResolution(std::string &png, int dotsPerInch);

} // namespace orva
