#include "ORVAnoisesup_reference.h"

#include "support/bits.h"
#include "support/log.h"
#include "support/random.h"
#include "support/recording.h"

#include <algorithm>

using namespace noisesup;
using support::Random;

namespace
{

Frame noiseFrame(Random &random, int32_t size)
{
    Frame frame;
    for (int32_t i = 0; i < size; ++i)
        frame.push_back(static_cast<int16_t>(random.integer(-20000, 20000)));
    return frame;
}

// Speech in frames, every third sample of the recording at 48000 Hz for 16000 Hz.
std::vector<Frame> speechFrames(int32_t sampleRate)
{
    const auto speech = support::recording();
    const auto step = static_cast<size_t>(48000 / sampleRate);
    const auto size = static_cast<size_t>(sampleRate / 100);
    std::vector<Frame> frames(1);
    for (size_t i = 0; i < speech.size(); i += step) {
        if (frames.back().size() == size)
            frames.emplace_back();
        frames.back().push_back(static_cast<int16_t>(speech[i] * 32767.0f));
    }
    frames.pop_back();
    return frames;
}

} // namespace

TEST(NoiseSup, FrameIsTenMilliseconds)
{
    for (const auto &[rate, size] : {std::pair{8000, 80}, {16000, 160}, {32000, 320}})
        EXPECT_EQ(ORVA_NoiseSupBufferSize(suppressor(rate, 1).get()), size);
    EXPECT_EQ(ORVA_NoiseSupBufferSize(nullptr), -1);
}

TEST(NoiseSup, OtherRatesAreRefusedWithOneMessage)
{
    for (const int32_t rate : {44100, 48000, 0, -8000, 15999, 2147483647}) {
        support::Log log;
        EXPECT_EQ(ORVA_CreateNoiseSupEx(rate, 0), nullptr) << rate;
        EXPECT_EQ(log.messages, std::vector{support::error("ORVA_CreateNoiseSup: Invalid sample rate.")})
            << rate;
    }
}

TEST(NoiseSup, OtherPoliciesAreRefusedInSilence)
{
    support::Log log;
    for (const int32_t policy : {4, -1, 1000})
        EXPECT_EQ(ORVA_CreateNoiseSupEx(16000, policy), nullptr) << policy;
    EXPECT_TRUE(log.messages.empty());
}

TEST(NoiseSup, ARefusedPolicyLeavesTheRunningOne)
{
    Random random;
    const auto disturbed = suppressor(16000, 2), left = suppressor(16000, 2);
    for (int frame = 0; frame < 40; ++frame) {
        EXPECT_FALSE(ORVA_SetNoiseSupIntensity(disturbed.get(), frame % 2 ? 4 : -1));
        const auto input = noiseFrame(random, 160);
        ASSERT_EQ(run(disturbed, input), run(left, input)) << frame;
    }
}

TEST(NoiseSup, NullHandlesAreRefused)
{
    EXPECT_FALSE(ORVA_SetNoiseSupIntensity(nullptr, 1));
    EXPECT_FALSE(ORVA_DestroyNoiseSup(nullptr));
}

TEST(NoiseSup, DestroyTellsThatAllWentWell)
{
    EXPECT_TRUE(ORVA_DestroyNoiseSup(ORVA_CreateNoiseSupEx(32000, 0)));
}

TEST(NoiseSup, ANullPointerTouchesNothingTheHistoryIncluded)
{
    Random random;
    for (const int32_t rate : {8000, 16000}) {
        const auto disturbed = suppressor(rate, 3), left = suppressor(rate, 3);
        std::vector<float> floats(static_cast<size_t>(rate / 100), 0.5f);
        for (int frame = 0; frame < 20; ++frame) {
            const auto input = noiseFrame(random, rate / 100);
            Frame output(input.size(), 77);
            EXPECT_EQ(ORVA_DoNoiseSup(disturbed.get(), floats.data(), nullptr), 0);
            EXPECT_EQ(ORVA_DoNoiseSup(disturbed.get(), nullptr, floats.data()), 0);
            EXPECT_EQ(ORVA_DoNoiseSup(nullptr, floats.data(), floats.data()), 0);
            EXPECT_EQ(ORVA_DoNoiseSup16(disturbed.get(), input.data(), nullptr), 0);
            EXPECT_EQ(ORVA_DoNoiseSup16(disturbed.get(), nullptr, output.data()), 0);
            EXPECT_EQ(ORVA_DoNoiseSup16(nullptr, input.data(), output.data()), 0);
            EXPECT_EQ(output, Frame(input.size(), 77));
            ASSERT_EQ(run(disturbed, input), run(left, input)) << frame;
        }
    }
}

TEST(NoiseSup, EqualsDirectCallsBitForBit)
{
    for (const int32_t rate : {8000, 16000})
        for (int policy = 0; policy < 4; ++policy) {
            const auto wrapped = suppressor(rate, policy);
            Direct direct(rate, policy);
            int index = 0;
            for (const auto &frame : speechFrames(rate))
                ASSERT_EQ(run(wrapped, frame), direct.run(frame))
                    << rate << " Hz, policy " << policy << ", frame " << index++;
        }
}

TEST(NoiseSup, PoliciesMayChangeBetweenFrames)
{
    Random random;
    const auto wrapped = suppressor(16000, 0);
    Direct direct(16000, 0);
    for (int frame = 0; frame < 200; ++frame) {
        const auto policy = static_cast<int32_t>(random.integer(0, 3));
        EXPECT_TRUE(ORVA_SetNoiseSupIntensity(wrapped.get(), policy));
        direct.setPolicy(policy);
        const auto input = noiseFrame(random, 160);
        ASSERT_EQ(run(wrapped, input), direct.run(input)) << frame;
    }
}

TEST(NoiseSup, SeveralSuppressorsRunInterleaved)
{
    Random random;
    std::vector<Suppressor> wrapped;
    std::vector<Direct> direct;
    for (const int32_t rate : {8000, 16000, 8000, 16000}) {
        const auto policy = static_cast<int32_t>(wrapped.size());
        wrapped.push_back(suppressor(rate, policy));
        direct.emplace_back(rate, policy);
    }
    for (int frame = 0; frame < 100; ++frame)
        for (size_t i = 0; i < wrapped.size(); ++i) {
            const auto input = noiseFrame(random, direct[i].sampleRate / 100);
            ASSERT_EQ(run(wrapped[i], input), direct[i].run(input)) << frame << ", " << i;
        }
}

TEST(NoiseSup, FloatSamplesPassThroughSixteenBits)
{
    Random random;
    for (const int32_t rate : {8000, 16000}) {
        const auto floats = suppressor(rate, 1), words = suppressor(rate, 1);
        for (int frame = 0; frame < 50; ++frame) {
            std::vector<float> input, output(static_cast<size_t>(rate / 100)), expected;
            Frame rounded;
            for (int i = 0; i < rate / 100; ++i) {
                input.push_back(static_cast<float>(random.real(-1.2, 1.2)));
                rounded.push_back(static_cast<int16_t>(
                    std::clamp(std::nearbyint(double{input.back()} * 32768.0), -32768.0, 32767.0)));
            }
            EXPECT_EQ(ORVA_DoNoiseSup(floats.get(), input.data(), output.data()), 1);
            for (const int16_t v : run(words, rounded))
                expected.push_back(static_cast<float>(v) / 32768.0f);
            ASSERT_TRUE(support::sameBits(output, expected)) << frame;
        }
    }
}

// White noise comes back later and otherwise nearly as it was, so no other lag leaves as small a difference.
TEST(NoiseSup, OutputLagsBySixTenthsOfAFrame)
{
    Random random;
    for (const int32_t rate : {8000, 16000}) {
        const auto created = suppressor(rate, 3);
        const size_t frame = static_cast<size_t>(rate) / 100, lag = frame * 6 / 10;
        Frame input, output;
        for (int i = 0; i < 50; ++i) {
            const auto next = noiseFrame(random, rate / 100), given = run(created, next);
            input.insert(input.end(), next.begin(), next.end());
            output.insert(output.end(), given.begin(), given.end());
        }
        const auto difference = [&](size_t shift) { // in power, relative to the input
            double error = 0.0, power = 0.0;
            for (size_t n = 10 * frame; n < input.size(); ++n) {
                error += std::pow(output[n] - input[n - shift], 2);
                power += std::pow(input[n - shift], 2);
            }
            return error / power;
        };
        EXPECT_LT(difference(lag), 1e-5) << rate;
        EXPECT_GT(difference(lag - 1), 1.0) << rate;
        EXPECT_GT(difference(lag + 1), 1.0) << rate;
    }
}

TEST(NoiseSup, WorksInPlace)
{
    Random random;
    const auto apart = suppressor(16000, 2), inPlace = suppressor(16000, 2);
    for (int frame = 0; frame < 20; ++frame) {
        auto samples = noiseFrame(random, 160);
        const auto expected = run(apart, samples);
        EXPECT_EQ(ORVA_DoNoiseSup16(inPlace.get(), samples.data(), samples.data()), 1);
        EXPECT_EQ(samples, expected);
    }
}

TEST(NoiseSup, AtThirtyTwoKilohertzSilenceComesOutAndTheResultIsOne)
{
    Random random;
    const auto created = suppressor(32000, 0);
    for (int frame = 0; frame < 50; ++frame) {
        const auto input = noiseFrame(random, 320);
        Frame output(320, 77);
        EXPECT_EQ(ORVA_DoNoiseSup16(created.get(), input.data(), output.data()), 1);
        ASSERT_EQ(output, Frame(320, 0));
        std::vector<float> samples(320, 0.3f);
        EXPECT_EQ(ORVA_DoNoiseSup(created.get(), samples.data(), samples.data()), 1);
        ASSERT_EQ(samples, std::vector<float>(320, 0.0f));
    }
}
