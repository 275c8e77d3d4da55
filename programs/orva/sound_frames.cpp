#include "sound_frames.h"

#include <algorithm>

namespace orva
{

SoundFrames::SoundFrames(SoundInput &sound, const FrameRange &where)
    : input(sound), range(where),
      samples(static_cast<size_t>(where.size) * static_cast<size_t>(sound.info.channels))
{
}

// Moves the frame on; what is read fills its end, and zeros do after the end of the sound.
void SoundFrames::advance(int64_t frames)
{
    const auto channels = static_cast<int64_t>(input.info.channels);
    while (frames > 0 && !ended) {
        const int64_t part = std::min<int64_t>(frames, range.size);
        std::copy(samples.begin() + part * channels, samples.end(), samples.begin());
        float *end = samples.data() + (range.size - part) * channels;
        const int64_t got = readSound(input, end, part);
        std::fill(end + got * channels, end + part * channels, 0.0F);
        ended = got < part;
        frames -= part;
    }
    const int64_t rest = std::min<int64_t>(frames, range.size); // all after the end
    std::copy(samples.begin() + rest * channels, samples.end(), samples.begin());
    std::fill(samples.end() - rest * channels, samples.end(), 0.0F);
}

bool SoundFrames::next()
{
    const int64_t centre = range.from + taken * range.hop;
    if (centre >= range.to) {
        while (!ended && input.position < range.to) // as far as the last frame speaks
            advance(std::min<int64_t>(range.size, range.to - input.position));
        return false;
    }
    if (ended && centre >= input.position)
        return false;
    advance(taken == 0 ? range.from + range.size - range.size / 2 : range.hop);
    if (ended && centre >= input.position)
        return false;
    ++taken;
    return true;
}

void SoundFrames::copy(int channel, float *frame) const
{
    const auto channels = static_cast<size_t>(input.info.channels);
    const float *sample = samples.data() + channel;
    for (int32_t i = 0; i < range.size; ++i, sample += channels)
        frame[i] = *sample;
}

} // namespace orva
