// The formats in which sound is stored, by their names.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <string>

namespace orva
{

// Samples without a head, as "s16:48000:2" tells them: the format of a sample, the rate, the channels.
struct RawFormat {
    int format = 0; // of a sample and the order of its bytes; 0 if there is none
    int rate = 0;   // 0: not told
    int channels = 1;
};

// Refuses, as used wrongly, what is no such text.
RawFormat rawFormat(const std::string &text);

// How a sound is to be stored, as far as somebody has told.
struct StoreAs {
    std::string format; // a name such as "flac"
    std::string bits;   // 8, 16, 24, 32, float or double
};

// The format, of libsndfile, for a file of this name: from what is told, else the name's ending ("wav" for "-"), and
// samples as `like` has them or, where the format has none of these, as near as it can be. Refuses, as used wrongly, a
// name and a choice that no format is for.
int formatFor(const std::string &path, const StoreAs &told, const SF_INFO &like);

// The rate that a file of this format will tell; some keep it as the time from one sample to the next.
int rateKept(int format, int rate);

// Bytes of a stored sample, 0 where they are not all equally long.
int bytesOfSample(int format);

// Bits of a sample that is stored as an integer, 0 for any other.
int integerBits(int format);

// Such as "WAV, 16 bit".
std::string formatName(int format);

} // namespace orva
