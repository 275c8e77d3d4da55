// FFTW's wisdom as text.
#pragma once

namespace orva
{

// The text of fftwf_export_wisdom_to_string(), for free(); null when memory is out. Inside the planner.
char *newWisdomText();

} // namespace orva
