// The kernels of the noise suppressor: each level against the plain form bit by bit.
#include "noisesup/kernels/ORVAnoisesup_kernels.h"

#include "support/bits.h"
#include "support/levels.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <vector>

using namespace orva;
using support::sameBits;

namespace
{

const NoisesupKernels &plainKernels()
{
    return kernelsAt<NoisesupKernels>(Level::plain);
}

// Samples around the limits of 16 bits, any other number, and any bit pattern.
std::vector<float> band(support::Random &random, size_t length)
{
    constexpr float turns[] = {32767.0f, -32678.0f, -32768.0f, 0.0f, 1.0f, -1.0f};
    std::vector<float> samples(length);
    for (float &x : samples) {
        const auto kind = random.integer(0, 3);
        if (kind == 0)
            x = random.anyFloat();
        else if (kind == 1)
            x = turns[random.integer(0, 5)] + static_cast<float>(random.integer(-300, 300)) / 256.0f;
        else
            x = static_cast<float>(random.real(-40000.0, 40000.0));
    }
    return samples;
}

} // namespace

TEST(NoisesupKernels, WidenEverySample)
{
    std::vector<int16_t> samples;
    for (int32_t v = -32768; v <= 32767; ++v)
        samples.push_back(static_cast<int16_t>(v));
    for (const Level level : allLevels) {
        if (!isAvailable(level))
            continue;
        std::vector<float> widened(samples.size());
        kernelsAt<NoisesupKernels>(level).widenBand(samples.data(), widened.data(), 65536);
        for (size_t i = 0; i < samples.size(); ++i)
            ASSERT_EQ(widened[i], static_cast<float>(samples[i])) << nameOf(level);
    }
}

TEST(NoisesupKernels, HaveTheBitsOfThePlainFormAtEverySizeAndAlignment)
{
    support::Random random;
    for (const Level level : support::fasterLevels())
        for (int32_t count = 0; count <= 330; ++count) {
            const auto offset = static_cast<size_t>(random.integer(0, 15));
            const auto room = static_cast<size_t>(count) + offset + 40;
            const auto samples = band(random, room);
            const auto narrow = [&](const NoisesupKernels &kernels) {
                std::vector<int16_t> output(room, 12345);
                kernels.narrowBand(samples.data() + offset, output.data() + offset, count);
                return output;
            };
            const auto words = narrow(plainKernels());
            ASSERT_EQ(narrow(kernelsAt<NoisesupKernels>(level)), words) << nameOf(level) << ", " << count;
            const auto widen = [&](const NoisesupKernels &kernels) {
                std::vector<float> output(room, 12345.0f);
                kernels.widenBand(words.data() + offset, output.data() + offset, count);
                return output;
            };
            ASSERT_TRUE(sameBits(widen(kernelsAt<NoisesupKernels>(level)), widen(plainKernels())))
                << nameOf(level) << ", " << count;
        }
}
