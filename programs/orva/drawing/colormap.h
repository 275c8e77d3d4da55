// From a level to a colour whose lightness rises with it, so that a picture reads the same in grey.
#pragma once

#include <cstdint>

namespace orva
{

// The colour of a level from 0, black, to 1, pale yellow, as 0x00RRGGBB. A level outside counts as the nearer end, one
// that is not a number as 0.
uint32_t colormapColor(double level);

} // namespace orva
