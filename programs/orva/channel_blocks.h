// A sound sent through a process that works block by block on one channel at a time.
#pragma once

#include "sound_output.h"

#include <functional>
#include <vector>

namespace orva
{

struct BlockProcess {
    int32_t length = 0; // frames of a block; the last one is filled up with zeros
    int64_t delay = 0;  // frames by which what comes out lies after what goes in
    std::function<void(size_t channel, float *samples)>
        run;                    // turns a block of one channel into what comes out
    std::function<void()> done; // all channels of a block have been run
};

class ChannelBlocks
{
public:
    ChannelBlocks(SoundOutput &output, int channels, const BlockProcess &process);

    // Takes in any number of frames, channels interleaved, and writes what comes out of the blocks that are full.
    void push(const float *frames, int64_t count);

    // Zeros after the end bring out the last of the sound; as many frames have been written as were taken in.
    void end();

private:
    void runBlock();

    SoundOutput &output;
    size_t channels;
    BlockProcess process;
    std::vector<float> block, one;
    int64_t taken = 0, filled = 0; // frames in all, and in the block
    int64_t start = 0;             // the frame with which the block begins
};

} // namespace orva
