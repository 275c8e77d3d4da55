// The denoise program: the sound that comes out at each rate, the level that it tells, its picture, and what
// it refuses.
#include "long_sounds.h"
#include "picture.h"
#include "program.h"
#include "refusals.h"
#include "sounds.h"
#include "support/bits.h"
#include "support/random.h"
#include "support/recording.h"

extern "C" {
#include "common/colormap.h"
}

#include <orva/ORVAnoisesup.h>

#include <gtest/gtest.h>

namespace
{

using Samples = std::vector<float>;

struct Denoised {
    SF_INFO info;
    Samples samples;
    std::string said, noted;
    double level;
};

Denoised denoised(const std::vector<std::string> &arguments, const support::Folder &folder)
{
    const auto outcome = runProgram("denoise", arguments, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    Denoised result{{}, {}, outcome.out, outcome.err, 0};
    EXPECT_EQ(std::sscanf(outcome.out.c_str(), "out.wav: %*f s at %*d Hz, the level changed by %lf dB",
                          &result.level),
              1)
        << outcome.out;
    result.samples = support::readSamples(folder / "out.wav", result.info);
    return result;
}

Samples quietNoise(size_t length)
{
    support::Random random;
    Samples samples = random.noise(length);
    for (float &x : samples)
        x *= 0.1f;
    return samples;
}

// What the library makes of a sound, frame by frame, without the 0.6 frames by which it lags.
Samples suppressed(Samples samples, int rate, int policy)
{
    const auto length = static_cast<ptrdiff_t>(samples.size());
    ORVA_NOISESUP *suppressor = ORVA_CreateNoiseSupEx(rate, policy);
    const ptrdiff_t frame = rate / 100, lag = frame * 3 / 5;
    samples.resize(static_cast<size_t>((length + lag + frame - 1) / frame * frame));
    for (ptrdiff_t at = 0; at < std::ssize(samples); at += frame)
        ORVA_DoNoiseSup(suppressor, samples.data() + at, samples.data() + at);
    ORVA_DestroyNoiseSup(suppressor);
    return {samples.begin() + lag, samples.begin() + lag + length};
}

double decibels(double sum, double reference)
{
    return 10 * std::log10(sum / reference);
}

} // namespace

TEST(DenoiseProgram, WritesWhatTheLibraryMakesOfEveryChannel)
{
    for (const int rate : {8000, 16000}) {
        const support::Folder folder;
        const Samples channels[] = {quietNoise(5000), sine(440, 0.5, 5000, rate), Samples(5000, 0.25f)};
        Samples all;
        for (size_t i = 0; i < 5000; ++i)
            for (const Samples &channel : channels)
                all.push_back(channel[i]);
        writeSound(folder / "in.wav", all, {.rate = rate, .channels = 3});
        const Denoised result = denoised({"in.wav", "out.wav", "out.png", "policy=3"}, folder);
        EXPECT_EQ(result.noted, "");
        ASSERT_EQ(result.info.channels, 3);
        EXPECT_EQ(result.info.samplerate, rate);
        for (size_t c = 0; c < 3; ++c) {
            Samples one;
            for (size_t i = c; i < result.samples.size(); i += 3)
                one.push_back(result.samples[i]);
            EXPECT_TRUE(support::sameBits(one, suppressed(channels[c], rate, 3)))
                << rate << ", channel " << c;
        }
    }
}

TEST(DenoiseProgram, NextToNothingIsTakenAwayAndWhatComesOutStandsWhereItWentIn)
{
    for (const int rate : {8000, 16000}) {
        const support::Folder folder;
        const Samples samples = quietNoise(static_cast<size_t>(rate));
        writeSound(folder / "in.wav", samples, {.rate = rate});
        for (const char *policy : {"policy=0", "policy=3"}) {
            const Denoised result = denoised({"in.wav", "out.wav", "out.png", policy}, folder);
            ASSERT_EQ(result.samples.size(), samples.size());
            double error = 0, signal = 0;
            for (size_t i = 400; i < samples.size() - 400; ++i) {
                error +=
                    std::pow(static_cast<double>(result.samples[i]) - static_cast<double>(samples[i]), 2);
                signal += std::pow(static_cast<double>(samples[i]), 2);
            }
            EXPECT_LT(decibels(error, signal), -50) << rate << ' ' << policy;
            EXPECT_LE(std::abs(result.level), 0.01) << rate << ' ' << policy;
            EXPECT_NE(result.level, 0);
        }
    }
}

TEST(DenoiseProgram, EightAndSixteenKilohertzStayAndTheRestBecomesSixteen)
{
    const struct {
        int from, to;
        std::vector<std::string> asked;
    } cases[] = {{8000, 8000, {}},   {16000, 16000, {}},
                 {11025, 16000, {}}, {32000, 16000, {}},
                 {48000, 16000, {}}, {48000, 8000, {"--rate", "8000"}},
                 {400, 16000, {}},   {8000, 16000, {"--rate", "16000"}}};
    for (const auto &c : cases) {
        const support::Folder folder;
        const size_t length = static_cast<size_t>(c.from) / 2 + 1;
        writeSound(folder / "in.wav", sine(std::min(c.from, c.to) / 10.0, 0.5, length, c.from),
                   {.rate = c.from, .format = SF_FORMAT_WAV | SF_FORMAT_PCM_24});
        std::vector<std::string> arguments = c.asked;
        arguments.insert(arguments.end(), {"in.wav", "out.wav", "out.png"});
        const Denoised result = denoised(arguments, folder);
        EXPECT_EQ(result.noted, "");
        EXPECT_EQ(result.info.samplerate, c.to) << c.from;
        EXPECT_EQ(result.info.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_24);
        const size_t expected = (length * static_cast<size_t>(c.to) + static_cast<size_t>(c.from) - 1) /
                                static_cast<size_t>(c.from);
        ASSERT_EQ(result.samples.size(), expected) << c.from;
        double power = 0;
        for (size_t i = expected / 4; i < 3 * expected / 4; ++i)
            power += std::pow(static_cast<double>(result.samples[i]), 2);
        EXPECT_NEAR(decibels(power / static_cast<double>(expected / 2), 0.125), 0, 0.2)
            << c.from << " to " << c.to;
        EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.wav", "out.png", "out.wav"}));
    }
}

TEST(DenoiseProgram, AskedForThirtyTwoKilohertzItSaysThatSilenceComesOut)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", sine(1000, 0.5, 24000));
    const Denoised result = denoised({"--rate", "32000", "in.wav", "out.wav", "out.png"}, folder);
    EXPECT_EQ(result.noted, "at 32000 Hz silence comes out\n");
    EXPECT_EQ(result.said, "out.wav: 0.50 s at 32000 Hz, the level changed by -inf dB\n");
    EXPECT_EQ(result.info.samplerate, 32000);
    EXPECT_EQ(result.samples, Samples(16000, 0.0f));

    // Two panels of 804 by 230 points; 1 of 16 kHz is at the 14th from below.
    const Picture picture = readPicture(folder / "out.png");
    constexpr int x = 84 + 402, in = 72 + 230 - 15, out = in + 230 + 66;
    EXPECT_LE(distance(picture.at(x, in), colormapColor(0.94)), 12);
    EXPECT_EQ(picture.at(x, out), colormapColor(0));
    EXPECT_EQ(colorsIn(picture, 84, 72 + 230 + 66, 804, 230), 1U);
}

TEST(DenoiseProgram, DrawsWhatGoesInAndWhatComesOut)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", sine(4000, 0.5, 32000, 16000), {.rate = 16000});
    denoised({"in.wav", "out.wav", "out.png"}, folder);
    const Picture picture = readPicture(folder / "out.png");
    for (const double place : {0.1, 0.5, 0.99})
        for (const int top : {72, 72 + 230 + 66}) {
            const int x = 84 + static_cast<int>(place * 804);
            EXPECT_LE(distance(picture.at(x, top + 115), colormapColor(0.94)), 12) << place << ' ' << top;
            EXPECT_EQ(picture.at(x, top + 30), colormapColor(0)) << place << ' ' << top;
        }
}

TEST(DenoiseProgram, WorksOnSilenceAndOnASingleSample)
{
    const support::Folder folder;
    writeSound(folder / "silent.wav", Samples(1000, 0.0f), {.rate = 16000});
    EXPECT_EQ(denoised({"silent.wav", "out.wav", "out.png"}, folder).level, 0);
    writeSound(folder / "one.wav", {0.5f}, {.rate = 8000});
    EXPECT_EQ(denoised({"one.wav", "out.wav", "out.png"}, folder).samples.size(), 1U);
    writeSound(folder / "one.wav", {0.5f}, {.rate = 96000});
    EXPECT_EQ(denoised({"one.wav", "out.wav", "out.png"}, folder).samples.size(), 1U);
}

TEST(DenoiseProgram, LongFilesRunInConstantMemoryThoughResampled)
{
    // The samples alone are 3840 kB.
    expectConstantMemory("denoise", {"--rate", "16000", "in.wav", "out.wav", "out.png"}, 60, 1500);
}

TEST(DenoiseProgram, RefusesWithOneLineAndWritesNothing)
{
    const std::string usage = "usage: denoise [--rate HZ] SOUND OUTPUT.wav PICTURE.png [policy=N]";
    const std::string rate = "rate: not 8000, 16000 or 32000";
    const std::vector<Refusal> cases = {
        {{}, usage},
        {{"voice.wav", "old.wav"}, usage},
        {{"--rate", "8000"}, usage},
        {{"--rate", "8000", "voice.wav", "old.wav"}, usage},
        {{"voice.wav", "old.wav", "old.png", "policy=1", "x"}, usage},
        {{"--rate", "48000", "voice.wav", "old.wav", "old.png"}, rate},
        {{"--rate", "16000Hz", "voice.wav", "old.wav", "old.png"}, rate},
        {{"--rate", "high", "voice.wav", "old.wav", "old.png"}, rate},
        {{"missing.wav", "old.wav", "old.png"}, "missing.wav: No such file or directory"},
        {{"--rate", "32000", "missing.wav", "old.wav", "old.png"}, "missing.wav: No such file or directory"},
        {{"none.wav", "old.wav", "old.png"}, "none.wav: holds no samples"},
        {{"voice.wav", "new.mp3", "new.png"}, "new.mp3: the name of this file must end in .wav"},
        {{"voice.wav", "folder.wav", "new.png"}, "folder.wav: is not an ordinary file"},
        {{"voice.wav", "old.wav", "new.jpg"}, "new.jpg: the name of this file must end in .png"},
        {{"voice.wav", "old.wav", "nowhere/new.png"}, "nowhere/new.png: No such file or directory"},
        {{"voice.wav", "old.wav", "old.png", "policy=4"},
         "configuration: policy=4 is not a whole number from 0 to 3"},
        {{"voice.wav", "old.wav", "old.png", "degree=1"},
         "configuration: unknown key \"degree\"; the keys are policy"},
    };
    expectRefusals("denoise", cases);
}
