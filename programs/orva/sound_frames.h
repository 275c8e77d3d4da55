// Overlapping frames of a sound.
#pragma once

#include "sound_input.h"

#include <vector>

namespace orva
{

// Where frames begin and end, in samples: frame k is centred on `from` + k * `hop`, so that it speaks for the hop around
// that sample, and the last one on a sample before `to`. Zeros stand for what lies outside the sound.
struct FrameRange {
    int32_t size = 1024, hop = 256;
    int64_t from = 0;
    int64_t to = INT64_MAX; // or the end of the sound, whichever comes first
};

class SoundFrames
{
public:
    // Reads `input` from its start.
    SoundFrames(SoundInput &input, const FrameRange &range);

    // Moves to the next frame; false after the last.
    bool next();

    // One channel of the frame, 0 for the first.
    void copy(int channel, float *frame) const;

    int64_t count() const
    {
        return taken;
    }

private:
    void advance(int64_t frames);

    SoundInput &input;
    FrameRange range;
    std::vector<float> samples; // the present frame, channels interleaved
    int64_t taken = 0;
    bool ended = false;
};

} // namespace orva
