// A sound brought to another rate, every channel of it.
#pragma once

#include "sound_output.h"

#include <orva/ORVAresample.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orva
{

struct ConverterOptions {
    int rate = 0;
    int order = 30;
    bool hold = false;
};

struct DestroyConverter {
    void operator()(ORVA_RESAMPLER *converter) const
    {
        ORVA_ResampleDestroy(converter);
    }
};
using Converter = std::unique_ptr<ORVA_RESAMPLER, DestroyConverter>;

// One converter a channel. Refuses what the library does, in its words.
std::vector<Converter> makeConverters(const SoundInput &input, const ConverterOptions &how);

// The frames that so many become: as long, rounded up.
int64_t framesAt(int64_t frames, int from, int to);

// Takes frames at the new rate, channels interleaved.
using ConvertedFrames = std::function<void(const float *frames, int64_t count)>;

// Sends the sound through, block by block, and after it as much of the filter's tail as belongs to it. Shows how far it is
// if asked to.
void convert(std::vector<Converter> &converters, SoundInput &input, const ConvertedFrames &take, int rate,
             bool progress);

} // namespace orva
