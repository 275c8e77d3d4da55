// The library's record and the plain form side by side: every call goes to both, and whatever they give must
// be equal.
#pragma once

#include "solafs/plain_scaler.h"
#include "support/bits.h"

#include <orva/ORVAsolafs.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

struct DestroySolafs {
    void operator()(ORVA_SOLAFS *solafs) const
    {
        ORVA_SolafsDestroy(solafs);
    }
};
using SolafsHandle = std::unique_ptr<ORVA_SOLAFS, DestroySolafs>;

struct Layout {
    int32_t stride = 1;
    int32_t offset = 0; // of the first sample, or of the last one if the stride is negative
};

class ScalerPair
{
public:
    ScalerPair(int32_t frameMs, int32_t sampleRate, Layout channel = {})
        : library(ORVA_SolafsCreate(frameMs, sampleRate, channel.stride)), plain(frameMs, sampleRate),
          layout(channel)
    {
    }

    // The number of samples taken. The array ends right after the channel's outermost sample.
    int32_t input(std::span<const float> block, float speed)
    {
        std::vector<float> data = untouched(block.size());
        for (size_t i = 0; i < block.size(); ++i)
            data[slot(i, block.size())] = block[i];
        const auto count = static_cast<int32_t>(block.size());
        const int32_t taken =
            ORVA_SolafsInputData(library.get(), first(block.size()), data.data(), count, speed);
        EXPECT_EQ(taken, plain.input({block.begin(), block.end()}, speed)) << "speed " << speed;
        return taken;
    }

    // The number of frames written.
    size_t output(int32_t capacity)
    {
        const std::vector<float> expected = plain.output(capacity);
        const auto room = static_cast<size_t>(std::max(capacity, plain.hop()));
        std::vector<float> data = untouched(room);
        std::vector<float> wanted = data;
        for (size_t i = 0; i < expected.size(); ++i)
            wanted[slot(i, room)] = expected[i];
        const int32_t written = ORVA_SolafsOutputData(library.get(), first(room), data.data(), capacity);
        EXPECT_EQ(written, static_cast<int32_t>(expected.size())) << "capacity " << capacity;
        EXPECT_TRUE(support::sameBits(data, wanted)) << "capacity " << capacity;
        output_.insert(output_.end(), expected.begin(), expected.end());
        return expected.size();
    }

    void cursor(int64_t position) const
    {
        EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(library.get(), position), plain.cursor(position))
            << position;
    }

    // Pushes all samples in, in blocks of this length, and pulls whatever is there between them.
    void run(std::span<const float> samples, size_t blockLength, float speed, int32_t capacity = 1 << 16)
    {
        while (!samples.empty()) {
            const auto taken =
                static_cast<size_t>(input(samples.first(std::min(blockLength, samples.size())), speed));
            samples = samples.subspan(taken);
            size_t written = 0;
            do
                written = output(capacity);
            while (written > 0);
            if (taken == 0 || testing::Test::HasFailure())
                break;
        }
        EXPECT_TRUE(samples.empty()) << samples.size() << " samples left";
    }

    const std::vector<float> &allOutput() const
    {
        return output_;
    }

    SolafsHandle library;
    PlainScaler plain;

private:
    size_t span(size_t frames) const
    {
        return frames == 0 ? 0 : (frames - 1) * static_cast<size_t>(std::abs(layout.stride));
    }

    int32_t first(size_t frames) const
    {
        return layout.offset + (layout.stride < 0 ? static_cast<int32_t>(span(frames)) : 0);
    }

    size_t slot(size_t i, size_t frames) const
    {
        return static_cast<size_t>(first(frames) + static_cast<int64_t>(i) * layout.stride);
    }

    // What a call must neither read nor write holds a value that would show.
    std::vector<float> untouched(size_t frames) const
    {
        return std::vector<float>(frames == 0 ? 0 : span(frames) + static_cast<size_t>(layout.offset) + 1,
                                  12345.0f);
    }

    Layout layout;
    std::vector<float> output_;
};
