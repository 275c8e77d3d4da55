#include "channel_blocks.h"

#include <algorithm>

namespace orva
{

ChannelBlocks::ChannelBlocks(SoundOutput &to, int channelCount, const BlockProcess &how)
    : output(to), channels(static_cast<size_t>(channelCount)), process(how),
      block(static_cast<size_t>(how.length) * channels), one(static_cast<size_t>(how.length))
{
}

// Takes the channels apart, has each processed, puts them together again, and writes what belongs to the sound.
void ChannelBlocks::runBlock()
{
    for (size_t channel = 0; channel < channels; ++channel) {
        for (size_t i = 0; i < one.size(); ++i)
            one[i] = block[i * channels + channel];
        process.run(channel, one.data());
        for (size_t i = 0; i < one.size(); ++i)
            block[i * channels + channel] = one[i];
    }
    process.done();
    const int64_t first = std::clamp<int64_t>(process.delay - start, 0, process.length);
    const int64_t last = std::min<int64_t>(taken + process.delay - start, process.length);
    if (first < last)
        output.write(block.data() + first * static_cast<int64_t>(channels), last - first);
    start += process.length;
    filled = 0;
}

void ChannelBlocks::push(const float *frames, int64_t count)
{
    const auto width = static_cast<int64_t>(channels);
    for (int64_t done = 0, part = 0; done < count; done += part) {
        part = std::min(count - done, process.length - filled);
        std::copy_n(frames + done * width, part * width, block.begin() + filled * width);
        filled += part;
        taken += part;
        if (filled == process.length)
            runBlock();
    }
}

void ChannelBlocks::end()
{
    while (start < taken + process.delay) {
        std::fill(block.begin() + filled * static_cast<ptrdiff_t>(channels), block.end(), 0.0F);
        runBlock();
    }
}

} // namespace orva
