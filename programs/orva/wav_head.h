// The head of a WAV file that is written without going back.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <string>

namespace orva
{

// For so many frames of samples as `info` tells, which are to follow it; -1 where their number is not known. `told` are
// chunks to stand before them.
std::string wavHead(const SF_INFO &info, int64_t frames, const std::string &told);

// The chunks in which a WAV file tells of its sound what `from` does, as copyMetadata() takes it over.
std::string metadataChunks(SNDFILE *from, double ratio, double longer);

} // namespace orva
