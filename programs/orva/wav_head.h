// The head of a WAV file that is written without going back.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <string>

namespace orva
{

// For so many frames of samples as `info` tells, which are to follow it; -1 where their number is not known.
std::string wavHead(const SF_INFO &info, int64_t frames);

} // namespace orva
