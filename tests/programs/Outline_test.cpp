// Outlines of sounds of any length.
#include "drawing/outline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace
{

// The sample of frame n of channel c: different everywhere, and of either sign.
float sampleAt(int64_t n, int c)
{
    return static_cast<float>((n * 7919 + c * 104729) % 20011 - 10000);
}

} // namespace

TEST(Outline, HoldsLeastAndMostOfEveryStretch)
{
    for (const int64_t frames : {1, 3, 4096, 4097, 8192, 8193, 50000})
        for (const int channels : {1, 3}) {
            orva::Outline outline;
            std::vector<float> samples;
            for (int64_t n = 0; n < frames; ++n)
                for (int c = 0; c < channels; ++c)
                    samples.push_back(sampleAt(n, c));
            const int64_t cut = frames / 3; // in two parts
            outline.add(samples.data(), cut, channels);
            outline.add(samples.data() + cut * channels, frames - cut, channels);

            int64_t width = 1;
            while (width * 4096 < frames)
                width *= 2;
            EXPECT_EQ(outline.frames(), frames);
            EXPECT_EQ(outline.stretch(), width);
            for (int64_t first = 0; first < frames; first += width) {
                const auto from = samples.begin() + first * channels;
                const auto to = samples.begin() + std::min(first + width, frames) * channels;
                ASSERT_EQ(outline.least[static_cast<size_t>(first / width)], *std::min_element(from, to))
                    << first << " of " << frames;
                ASSERT_EQ(outline.most[static_cast<size_t>(first / width)], *std::max_element(from, to))
                    << first << " of " << frames;
            }
        }
}
