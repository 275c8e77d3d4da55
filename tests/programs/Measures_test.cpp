// The measures program: what its three panels show, what it says, and what it refuses.
#include "picture.h"
#include "program.h"
#include "refusals.h"
#include "sounds.h"

extern "C" {
#include "common/axis.h"
#include "common/colormap.h"
}

#include <gtest/gtest.h>

namespace
{

// Where the three panels stand.
constexpr int left = 84, width = 804, top = 72, height = 200, gap = 66;

struct Measured {
    double seconds, energy, crossings;
    int frames;
    Picture picture;
};

Measured measured(const std::vector<float> &samples, const std::string &config, SoundFormat how = {})
{
    const support::Folder folder;
    writeSound(folder / "in.wav", samples, how);
    const auto outcome = runProgram("measures", {"in.wav", "p.png", config}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.wav", "p.png"}));
    Measured result{};
    EXPECT_EQ(std::sscanf(outcome.out.c_str(),
                          "p.png: %lf s, frames: %d, energy up to %lf dB, zero crossings up to %lf per ms",
                          &result.seconds, &result.frames, &result.energy, &result.crossings),
              4)
        << outcome.out;
    result.picture = readPicture(folder / "p.png");
    return result;
}

double curveAt(const Picture &picture, int panel, double place)
{
    return heightOf(picture, 0x0073b3, left + static_cast<int>(place * width), top + panel * (height + gap),
                    height);
}

} // namespace

TEST(MeasuresProgram, ASineHasItsPlaceOnTheMelAxisItsEnergyAndItsCrossings)
{
    for (const double hertz : {440.0, 3000.0, 15000.0}) {
        const Measured result = measured(sine(hertz, 0.5, 48000), "");
        EXPECT_EQ(result.seconds, 1);
        EXPECT_EQ(result.frames, 188); // 48000 / 256, rounded up
        const double energy = 10 * std::log10(0.125 / 0.32768);
        EXPECT_NEAR(result.energy, energy, 0.1) << hertz;
        EXPECT_NEAR(result.crossings, 2 * hertz / 1000, 0.1) << hertz;
        EXPECT_NEAR(curveAt(result.picture, 1, 0.5), 1 + energy / 80, 0.01) << "its axis ends at 0 dB";
        EXPECT_NEAR(curveAt(result.picture, 2, 0.5), 2 * hertz / 1000 / std::ceil(result.crossings), 0.02);

        const Axis mel = axisMel(24000);
        int loudest = top;
        for (int y = top; y < top + height; ++y)
            if ((result.picture.at(left + width / 2, y) & 0xff00U) >
                (result.picture.at(left + width / 2, loudest) & 0xff00U))
                loudest = y;
        EXPECT_NEAR(1 - (loudest + 0.5 - top) / height, axisPlace(&mel, hertz), 0.015) << hertz;
        EXPECT_LE(distance(result.picture.at(left + width / 2, loudest), colormapColor(1 - 6.02 / 80)), 12);
    }
}

TEST(MeasuresProgram, FramesWithoutEnergyAreLeftOut)
{
    auto samples = sine(440, 0.5, 48000);
    std::fill(samples.begin() + 12000, samples.begin() + 36000, 0.0f);
    const Measured half = measured(samples, "size=512; hop=128");
    EXPECT_FALSE(std::isnan(curveAt(half.picture, 1, 0.1)));
    EXPECT_TRUE(std::isnan(curveAt(half.picture, 1, 0.5)));
    EXPECT_FALSE(std::isnan(curveAt(half.picture, 1, 0.9)));
    const Measured silent = measured(std::vector<float>(1000, 0.0f), "");
    EXPECT_EQ(silent.energy, -HUGE_VAL);
    EXPECT_EQ(silent.crossings, 0);
}

TEST(MeasuresProgram, TakesTheChannelSizeAndHopAskedFor)
{
    std::vector<float> samples(2 * 24000);
    const auto tone = sine(1000, 1, 24000);
    for (size_t i = 0; i < tone.size(); ++i)
        samples[2 * i + 1] = tone[i];
    const Measured second = measured(samples, "channel=2; size=100; hop=1000", {.channels = 2});
    EXPECT_EQ(second.frames, 24);
    EXPECT_NEAR(second.energy, 10 * std::log10(0.5 / 0.32768), 0.1);
    EXPECT_EQ(measured(samples, "channel=1", {.channels = 2}).energy, -HUGE_VAL);
    for (const char *config : {"size=3", "size=4; hop=7", "size=1048576; hop=2147483647"})
        EXPECT_EQ(measured(tone, config).picture.height, top + 3 * (height + gap)) << config;
}

TEST(MeasuresProgram, RefusesWithOneLineAndWritesNothing)
{
    const std::string usage = "usage: measures SOUND PICTURE.png [CONFIGURATION]";
    const std::vector<Refusal> cases = {
        {{}, usage},
        {{"voice.wav", "old.png", "size=4", "x"}, usage},
        {{"missing.wav", "old.png"}, "missing.wav: No such file or directory"},
        {{"none.wav", "old.png"}, "none.wav: holds no samples"},
        {{"voice.wav", "old.jpg"}, "old.jpg: the name of this file must end in .png"},
        {{"voice.wav", "nowhere/new.png"}, "nowhere/new.png: No such file or directory"},
        {{"voice.wav", "old.png", "channel=2"}, "voice.wav: has 1 channel, so there is no channel 2"},
        {{"voice.wav", "old.png", "size=2"}, "configuration: size=2 is not a whole number from 3 to 1048576"},
        {{"voice.wav", "old.png", "hop=0"}, "configuration: hop=0 is not a whole number of 1 or more"},
        {{"voice.wav", "old.png", "mels=9"},
         "configuration: unknown key \"mels\"; the keys are size, hop, channel"},
    };
    expectRefusals("measures", cases);
}
