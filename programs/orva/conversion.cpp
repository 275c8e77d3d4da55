#include "conversion.h"

#include "failure.h"
#include "library_message.h"

#include <algorithm>

namespace orva
{
namespace
{

enum { blockFrames = 4096 };

// Channels apart while they are converted, and together while they are read and written.
struct Buffers {
    std::vector<float> in, one, converted, out;
};

int32_t convertBlock(std::vector<Converter> &converters, Buffers &buffers, int32_t count, int32_t due)
{
    const size_t channels = converters.size();
    int32_t written = 0;
    for (size_t channel = 0; channel < channels; ++channel) {
        ORVA_RESAMPLER *converter = converters[channel].get();
        for (int32_t i = 0; i < count; ++i)
            buffers.one[static_cast<size_t>(i)] = buffers.in[static_cast<size_t>(i) * channels + channel];
        written = count > 0 ? ORVA_Resample(converter, buffers.one.data(), buffers.converted.data(), count)
                            : ORVA_ResampleFlushBuffersEx(converter, buffers.converted.data(), due);
        if (written < 0)
            fail(libraryMessage("out of memory"));
        for (int32_t i = 0; i < written; ++i)
            buffers.out[static_cast<size_t>(i) * channels + channel] =
                buffers.converted[static_cast<size_t>(i)];
    }
    return written;
}

} // namespace

std::vector<Converter> makeConverters(const SoundInput &input, const ConverterOptions &how)
{
    std::vector<Converter> converters;
    const std::string config =
        how.hold ? "type=zoh" : "type=polyphase; delaycompensation=1; order=" + std::to_string(how.order);
    for (int i = 0; i < input.info.channels; ++i) {
        converters.emplace_back(ORVA_ResampleInit(input.info.samplerate, how.rate, config.c_str()));
        const std::string refusal = libraryMessage("");
        if (converters.back() == nullptr || !refusal.empty())
            fail(input.name + ": cannot go from " + std::to_string(input.info.samplerate) + " to " +
                 std::to_string(how.rate) + " Hz: " + (refusal.empty() ? "out of memory" : refusal));
    }
    return converters;
}

int64_t framesAt(int64_t frames, int from, int to)
{
    return (frames * to + from - 1) / from;
}

void convert(std::vector<Converter> &converters, SoundInput &input, const ConvertedFrames &take, int rate,
             bool progress)
{
    const int from = input.info.samplerate;
    const int32_t most = rate / from + 1; // samples for one; a block gives one more
    const int32_t block = most < blockFrames ? blockFrames / most : 1;
    const auto room = static_cast<size_t>(block * most + 1 +
                                          std::max(ORVA_ResampleFlushBufferSize(converters[0].get()), 0));
    const size_t channels = converters.size();
    const auto length = static_cast<size_t>(block);
    Buffers buffers{std::vector<float>(length * channels), std::vector<float>(length),
                    std::vector<float>(room), std::vector<float>(room * channels)};
    int64_t given = 0;
    while (const int64_t count = readSound(input, buffers.in.data(), block)) {
        const int32_t written = convertBlock(converters, buffers, static_cast<int32_t>(count), 0);
        take(buffers.out.data(), written);
        given += written;
        if (progress)
            showProgress(input);
    }
    const int64_t due = framesAt(input.position, from, rate) - given;
    if (due > 0)
        take(buffers.out.data(), convertBlock(converters, buffers, 0, static_cast<int32_t>(due)));
}

} // namespace orva
