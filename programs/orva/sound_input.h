// Sound that is read: a file of any format of libsndfile, or standard input.
#pragma once

#include "formats.h"

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>

namespace orva
{

struct CloseSound {
    void operator()(SNDFILE *file) const
    {
        sf_close(file);
    }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSound>;

struct SoundInput {
    std::string name; // for messages
    SoundFile file;
    SF_INFO info{};
    int64_t length = 0;      // frames, -1 where only the end will tell
    int64_t position = 0;    // frames read so far
    int64_t notFinite = 0;   // samples read as 0 because they were infinite or not a number
    bool endedEarly = false; // before its length
};

// Opens a sound; "-" is standard input, whose samples are as `raw` tells if that has a format. Refuses what cannot be
// read and, unless its length is unknown, what holds no sample.
SoundInput openSound(const std::string &path, const RawFormat &raw);

// Reads on, with the channels interleaved. Fewer frames than asked, 0 included, are the last ones.
int64_t readSound(SoundInput &input, float *frames, int64_t count);

// Shows how far it has been read.
void showProgress(const SoundInput &input);

// After the last frame: takes that away, and refuses a sound that turned out to hold no sample.
void endReading(const SoundInput &input);

// Tells, where there is any, what was wrong with the samples read.
void noteDamage(const SoundInput &input);

// Texts and what else a file tells of its sound, taken over into one that is being started. `ratio` is the output's rate
// over the input's; marks are moved to where they stand in a sound that is `longer` by that factor, or left out if it is 0.
void copyMetadata(SNDFILE *from, SNDFILE *to, double ratio, double longer);

} // namespace orva
