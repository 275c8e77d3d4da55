// orva denoise: the sound that comes out at each rate, what it says of it, its picture, and what it refuses.
#include "drawing/colormap.h"
#include "long_sounds.h"
#include "orva.h"
#include "picture.h"
#include "support/bits.h"

#include <orva/ORVAnoisesup.h>

#include <gtest/gtest.h>

namespace
{

using orva::colormapColor;
using Samples = std::vector<float>;

struct Denoised {
    SF_INFO info;
    Samples samples;
    std::string said, noted;
};

Denoised denoised(const std::string &input, const std::vector<std::string> &how,
                  const support::Folder &folder)
{
    std::vector<std::string> words{"denoise", input, "out.wav", "--picture=out.png"};
    words.insert(words.end(), how.begin(), how.end());
    const auto outcome = orvaRun(words, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    Denoised result{{}, {}, outcome.out, outcome.err};
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

const char *const truth =
    " of the level taken out: the suppressor adapts without its analysis step, so what remains of "
    "a hiss is what went in\n";

} // namespace

TEST(OrvaDenoise, WritesWhatTheLibraryMakesOfEveryChannel)
{
    for (const int rate : {8000, 16000}) {
        const support::Folder folder;
        const Samples channels[] = {quietNoise(5000), sine(440, 0.5, 5000, rate), Samples(5000, 0.25f)};
        Samples all;
        for (size_t i = 0; i < 5000; ++i)
            for (const Samples &channel : channels)
                all.push_back(channel[i]);
        writeSound(folder / "in.wav", all, {.rate = rate, .channels = 3});
        const Denoised result = denoised("in.wav", {"--policy=3"}, folder);
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

TEST(OrvaDenoise, SaysThatNextToNothingIsTakenOut)
{
    const support::Folder folder;
    const Samples samples = quietNoise(16000);
    writeSound(folder / "in.wav", samples, {.rate = 16000});
    const Denoised result = denoised("in.wav", {"--policy=3"}, folder);
    double less = -1;
    EXPECT_EQ(std::sscanf(result.said.c_str(), "out.wav: 1.00 s at 16000 Hz, %lf dB of the level", &less), 1)
        << result.said;
    EXPECT_TRUE(result.said.ends_with(truth)) << result.said;
    double error = 0, before = 0, after = 0;
    for (size_t i = 400; i < samples.size() - 400; ++i) {
        const auto in = static_cast<double>(samples[i]), out = static_cast<double>(result.samples[i]);
        error += (out - in) * (out - in);
        before += in * in;
        after += out * out;
    }
    EXPECT_LT(decibels(error, before), -50);
    EXPECT_NEAR(less, decibels(before, after), 0.005);

    const auto piped = orvaShell("orva denoise in.wav - | orva info -", folder);
    EXPECT_TRUE(piped.err.ends_with(truth)) << piped.err;
    writeSound(folder / "silent.wav", Samples(1000, 0.0f), {.rate = 16000});
    EXPECT_EQ(denoised("silent.wav", {}, folder).said,
              "out.wav: 0.06 s at 16000 Hz, silence stayed silence\n");
}

TEST(OrvaDenoise, TellsWhatTheSuppressorCuts)
{
    const support::Folder folder;
    Samples samples = sine(500, 0.5, 16000, 16000);
    samples[5000] = 2;
    samples[6000] = -1.5f;
    writeSound(folder / "in.wav", samples, {.rate = 16000});
    EXPECT_EQ(
        denoised("in.wav", {}, folder).noted,
        "in.wav: 2 samples are cut at full scale on the way in; a sound 6.1 dB softer would avoid it\n");
}

TEST(OrvaDenoise, EightAndSixteenKilohertzStayAndTheRestBecomesSixteen)
{
    const struct {
        int from, to;
        std::vector<std::string> asked;
    } cases[] = {{8000, 8000, {}},   {16000, 16000, {}},
                 {11025, 16000, {}}, {32000, 16000, {}},
                 {48000, 16000, {}}, {48000, 8000, {"--rate=8k"}},
                 {400, 16000, {}},   {8000, 16000, {"--rate=16000"}}};
    for (const auto &c : cases) {
        const support::Folder folder;
        const size_t length = static_cast<size_t>(c.from) / 2 + 1;
        writeSound(folder / "in.wav", sine(std::min(c.from, c.to) / 10.0, 0.5, length, c.from),
                   {.rate = c.from, .format = SF_FORMAT_WAV | SF_FORMAT_PCM_24});
        const Denoised result = denoised("in.wav", c.asked, folder);
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
    }
}

TEST(OrvaDenoise, AskedForThirtyTwoKilohertzItSaysThatSilenceComesOut)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", sine(1000, 0.5, 24000));
    const Denoised result = denoised("in.wav", {"--rate=32k"}, folder);
    EXPECT_EQ(result.noted, "at 32000 Hz silence comes out\n");
    EXPECT_EQ(result.said, "out.wav: 0.50 s at 32000 Hz, all of it was taken out\n");
    EXPECT_EQ(result.info.samplerate, 32000);
    EXPECT_EQ(result.samples, Samples(16000, 0.0f));

    // Two panels of 804 by 230 points; 1 of 16 kHz is at the 14th from below.
    const Picture picture = readPicture(folder / "out.png");
    constexpr int x = 84 + 402, in = 72 + 230 - 15, out = in + 230 + 66;
    EXPECT_LE(distance(picture.at(x, in), colormapColor(0.94)), 12);
    EXPECT_EQ(picture.at(x, out), colormapColor(0));
}

TEST(OrvaDenoise, DrawsWhatGoesInAndWhatComesOut)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", sine(4000, 0.5, 32000, 16000), {.rate = 16000});
    denoised("in.wav", {}, folder);
    const Picture picture = readPicture(folder / "out.png");
    for (const double place : {0.1, 0.5, 0.99})
        for (const int top : {72, 72 + 230 + 66}) {
            const int x = 84 + static_cast<int>(place * 804);
            EXPECT_LE(distance(picture.at(x, top + 115), colormapColor(0.94)), 12) << place << ' ' << top;
            EXPECT_EQ(picture.at(x, top + 30), colormapColor(0)) << place << ' ' << top;
        }
}

TEST(OrvaDenoise, WorksOnASingleSample)
{
    const support::Folder folder;
    for (const int rate : {8000, 96000}) {
        writeSound(folder / "one.wav", {0.5f}, {.rate = rate});
        EXPECT_EQ(denoised("one.wav", {}, folder).samples.size(), 1U);
    }
}

TEST(OrvaDenoise, LongFilesRunInConstantMemoryThoughResampled)
{
    // The samples alone are 3840 kB.
    expectConstantMemory("orva", {"denoise", "in.wav", "out.wav", "--rate=16k"}, 60, 1500);
}

TEST(OrvaDenoise, RefusesInOneLineAndWritesNothing)
{
    expectRefusals({
        {{"denoise", "voice.wav"}, 2, "orva denoise: output is required; see 'orva denoise --help'"},
        {{"denoise", "voice.wav", "o.wav", "--rate=48k"}, 2, "orva denoise: --rate is 8000, 16000 or 32000"},
        {{"denoise", "voice.wav", "o.wav", "--policy=4"},
         2,
         "orva denoise: --policy: Value 4 not in range 0 to 3; see 'orva denoise --help'"},
    });
}
