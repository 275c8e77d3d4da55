// The filter program: the sound that it writes, the response that it draws, and what it refuses.
#include "picture.h"
#include "program.h"
#include "refusals.h"
#include "sounds.h"
#include "support/bits.h"
#include "support/random.h"
#include "support/recording.h"

#include <orva/ORVAfilter.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

// Where the two panels stand in the picture, and what their axes hold at a rate of 48000 Hz.
constexpr int left = 84, right = 972, height = 220, gainTop = 72, phaseTop = 358;

int columnOf(double hertz)
{
    return left + static_cast<int>((right - left) * std::log(hertz / 10) / std::log(24000.0 / 10));
}

// The middle of the curve in one column of a panel, as a part of its height from below.
double curveAt(const Picture &picture, int x, int top)
{
    double sum = 0, count = 0;
    for (int y = top; y < top + height; ++y)
        if (distance(picture.at(x, y), 0x0073b3) < 60) {
            sum += y + 0.5;
            ++count;
        }
    EXPECT_GT(count, 0) << "no curve at " << x;
    EXPECT_LE(count, 6) << "more than a line at " << x;
    return 1 - (sum / count - top) / height;
}

Picture responseOf(const std::string &config)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", std::vector<float>(100, 0.5F));
    const support::Outcome outcome = runProgram("filter", {"in.wav", "out.wav", "p.png", config}, folder);
    EXPECT_EQ(outcome.status, 0) << config;
    EXPECT_EQ(outcome.err, "") << config;
    return readPicture(folder / "p.png");
}

} // namespace

TEST(FilterProgram, WritesWhatTheLibraryMakesOfEveryChannel)
{
    support::Random random;
    for (const int channels : {1, 2, 3, 8}) {
        const support::Folder folder;
        auto samples = random.noise(static_cast<size_t>(channels) * 10000);
        writeSound(folder / "in.wav", samples, {.channels = channels});
        const support::Outcome outcome = runProgram(
            "filter", {"in.wav", "out.wav", "p.png", "biquads=[-0.9 0.3 0.1 0.2 0.1; -1.1 0.4 0.2 0.4 0.2]"},
            folder);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");

        const double records[] = {-0.9, 0.3, 0.1, 0.2, 0.1, -1.1, 0.4, 0.2, 0.4, 0.2};
        _ORVA_FILTER *filter = ORVA_CreateFilterFromBiquads(channels, 2, records);
        ORVA_Filter(filter, samples.data(), samples.data(), static_cast<uint32_t>(samples.size()));
        ORVA_DestroyFilter(filter);
        SF_INFO info;
        EXPECT_TRUE(support::sameBits(support::readSamples(folder / "out.wav", info), samples)) << channels;
        EXPECT_EQ(info.channels, channels);
        EXPECT_EQ(info.samplerate, 48000);
        EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.wav", "out.wav", "p.png"}));
    }
}

TEST(FilterProgram, DesignsAtTheRateAndWithTheChannelsOfTheSound)
{
    support::Random random;
    for (const int rate : {8000, 44100}) {
        const support::Folder folder;
        auto samples = random.noise(20000);
        writeSound(folder / "in.wav", samples, {.rate = rate, .channels = 2});
        const std::string config =
            "type=bandpass; approximation=cheby1; order=3; Ap=0.5; fpass1=300; fpass2=3400";
        const support::Outcome outcome = runProgram("filter", {"in.wav", "out.wav", "p.png", config}, folder);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");

        _ORVA_FILTER *filter = ORVA_CreateFilter("%s; fs=%d; nc=2", config.c_str(), rate);
        ORVA_Filter(filter, samples.data(), samples.data(), static_cast<uint32_t>(samples.size()));
        ORVA_DestroyFilter(filter);
        SF_INFO info;
        EXPECT_TRUE(support::sameBits(support::readSamples(folder / "out.wav", info), samples)) << rate;
    }
}

TEST(FilterProgram, DrawsADesignThroughItsEdges)
{
    const Picture telephone = responseOf("type=bandpass; order=4; fpass1=300; fpass2=3400; gain=0.5");
    for (const double hertz : {300.0, 3400.0})
        EXPECT_NEAR(curveAt(telephone, columnOf(hertz), gainTop), 1 - (6.02 + 3.0) / 80, 0.02) << hertz;
    EXPECT_NEAR(curveAt(telephone, columnOf(1000), gainTop), 1 - 6.02 / 80, 0.01);
}

// Where rounding decides the phase, no curve is drawn.
TEST(FilterProgram, DrawsNoPhaseFarBelowTheGreatestGain)
{
    const Picture steep = responseOf("order=8; fpass=1000");
    int painted = 0;
    for (int x = columnOf(15000); x < columnOf(23000); ++x)
        for (int y = phaseTop; y < phaseTop + height; ++y)
            painted += distance(steep.at(x, y), 0x0073b3) < 60;
    EXPECT_EQ(painted, 0);
}

TEST(FilterProgram, TakesNumeratorAndDenominator)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", {1.0F, 0.0F, 0.0F, 0.0F});
    const support::Outcome outcome =
        runProgram("filter", {"in.wav", "out.wav", "p.png", "numerator=[2 4]; denominator=[2 1]"}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    SF_INFO info;
    EXPECT_EQ(support::readSamples(folder / "out.wav", info),
              (std::vector<float>{1.0F, 1.5F, -0.75F, 0.375F}));
}

// The axis of the gain ends at the next ten dB above the greatest gain, 80 dB above its start.
TEST(FilterProgram, DrawsTheMeasuredGainAndPhase)
{
    const Picture half = responseOf("numerator=[0.5]; denominator=[1]");
    EXPECT_EQ(half.width, 1000);
    for (const double hertz : {30.0, 1500.0, 15000.0}) {
        EXPECT_NEAR(curveAt(half, columnOf(hertz), gainTop), 1 - 6.02 / 80, 0.01);
        EXPECT_NEAR(curveAt(half, columnOf(hertz), phaseTop), 0.5, 0.01);
    }
    // One sample late: 180 degrees at half the rate, and no gain.
    const Picture late = responseOf("biquads=[0 0 0 1 0]");
    for (const double hertz : {3000.0, 6000.0, 12000.0})
        EXPECT_NEAR(curveAt(late, columnOf(hertz), phaseTop), 0.5 - hertz / 48000, 0.01) << hertz;
    // One pole: at low frequencies 1 / (1 - 0.9), which is 20 dB.
    const Picture pole = responseOf("numerator=1; denominator=[1 -0.9]");
    EXPECT_NEAR(curveAt(pole, columnOf(20), gainTop), 1.0, 0.015);
    EXPECT_NEAR(curveAt(pole, columnOf(12000), gainTop), 1 - (20 + 20 * std::log10(std::hypot(1, 0.9))) / 80,
                0.01);
}

TEST(FilterProgram, WorksWhereAFilterLetsNothingThrough)
{
    const support::Folder folder;
    std::filesystem::create_symlink(support::recordingPath(), folder.path / "voice.wav");
    const support::Outcome outcome =
        runProgram("filter", {"voice.wav", "out.wav", "p.png", "numerator=0, denominator=1"}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "out.wav: 1.43 s, channels: 1, loudest sample: -inf dB\n"
                           "p.png: 0 to 24000 Hz, greatest gain: -inf dB at 0 Hz\n");
    EXPECT_EQ(readPicture(folder / "p.png").width, 1000);
}

TEST(FilterProgram, AFileThatEndsEarlyKeepsItsLength)
{
    const support::Folder folder;
    writeHalfSound(folder / "a.flac");
    const support::Outcome outcome =
        runProgram("filter", {"a.flac", "out.wav", "p.png", "biquads=[0 0 1 0 0]"}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.err.ends_with(" of 100000 frames; the rest was taken as silence\n")) << outcome.err;
    SF_INFO info;
    const auto samples = support::readSamples(folder / "out.wav", info);
    ASSERT_EQ(samples.size(), 100000U);
    EXPECT_NE(samples[20000], 0.0F);
    EXPECT_EQ(samples[99999], 0.0F);
}

TEST(FilterProgram, ADiskThatIsFullLeavesNothing)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", std::vector<float>(100000, 0.5F));
    const support::Outcome outcome =
        runProgramOnFullDisk("filter", {"in.wav", "out.wav", "p.png", "biquads=[0 0 1 0 0]"}, folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_TRUE(outcome.err.starts_with("out.wav: ")) << outcome.err;
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"in.wav"});
}

TEST(FilterProgram, RefusesWithOneLineAndWritesNothing)
{
    const std::string information = "ORVA_CreateFilter: you must specify As or order";
    const std::string nothing = "configuration: no filter has these edges, attenuations and order";
    const std::string edge = " is not a frequency below half the sampling rate";
    const std::string columns = "configuration: a row of biquads has 5 numbers, a1, a2, b0, b1 and b2, not ";
    const std::string unstable = "configuration: this filter is not stable";
    const std::string usage = "usage: filter SOUND OUTPUT.wav RESPONSE.png CONFIGURATION";
    const std::vector<Refusal> cases = {
        {{}, usage},
        {{"voice.wav", "o.wav", "p.png"}, usage},
        {{"voice.wav", "o.wav", "p.png", "biquads=[0 0 1 0 0]", "x"}, usage},
        {{"missing.wav", "o.wav", "p.png", "biquads=[0 0 1 0 0]"}, "missing.wav: No such file or directory"},
        {{"voice.wav", "o.mp3", "p.png", "biquads=[0 0 1 0 0]"},
         "o.mp3: the name of this file must end in .wav"},
        {{"voice.wav", "o.wav", "p.gif", "biquads=[0 0 1 0 0]"},
         "p.gif: the name of this file must end in .png"},
        {{"voice.wav", "o.wav", "p.png", ""}, information},
        {{"voice.wav", "o.wav", "p.png", "numerator=[1 2]"}, information},
        {{"voice.wav", "o.wav", "p.png", "denominator=[1 2]"}, information},
        {{"voice.wav", "o.wav", "p.png", "order=4"},
         "ORVA_CreateFilter: You must specify a cutoff frequency (fpass)"},
        {{"voice.wav", "o.wav", "p.png", "type=tophat; order=4; fpass=300"},
         "ORVA_CreateFilter: Invalid filter type: tophat"}, // in the library's log it ends in a line feed
        {{"voice.wav", "o.wav", "p.png", "approximation=elliptic; order=4; fpass=300"},
         "ORVA_CreateFilter: Invalid approximation (elliptic)"},
        {{"voice.wav", "o.wav", "p.png", "order=4; fpass=0"}, nothing},
        {{"voice.wav", "o.wav", "p.png", "type=bp; order=4; fpass1=3400; fpass2=300"}, nothing},
        {{"voice.wav", "o.wav", "p.png", "order=4; fpass=24000"}, "configuration: fpass=24000" + edge},
        {{"voice.wav", "o.wav", "p.png", "As=40; fpass=300; fstop=5e4"}, "configuration: fstop=5e4" + edge},
        {{"voice.wav", "o.wav", "p.png", "order=0; fpass=300"},
         "configuration: order=0 is not a whole number from 1 to 1000"},
        {{"voice.wav", "o.wav", "p.png", "order=4; Ap=0; fpass=300"},
         "configuration: Ap=0 is not a number of decibels above 0"},
        {{"voice.wav", "o.wav", "p.png", "order=4; fpass=300; gain=-1"},
         "configuration: gain=-1 is not a number from 0 to 1000000"},
        {{"voice.wav", "o.wav", "p.png", "biquads=[1 2 3 4]"}, columns + "4"},
        {{"voice.wav", "o.wav", "p.png", "biquads=7"}, columns + "1"},
        {{"voice.wav", "o.wav", "p.png", "biquads=[1 2; 3]"},
         "configuration: biquads=[1 2; 3] is not a matrix such as [a1 a2 b0 b1 b2; a1 a2 b0 b1 b2]"},
        {{"voice.wav", "o.wav", "p.png", "numerator=[1; 2]; denominator=1"},
         "configuration: numerator=[1; 2] is not a vector such as [1 -1]"},
        {{"voice.wav", "o.wav", "p.png", "numerator=1; denominator=one"},
         "configuration: denominator=one is not a vector such as [1 -0.9]"},
        {{"voice.wav", "o.wav", "p.png", "biquad=[0 0 1 0 0]"},
         "configuration: unknown key \"biquad\"; the keys are type, approximation, order, fpass, fpass1, "
         "fpass2, fstop, fstop1, fstop2, Ap, As, gain, biquads, numerator, denominator"},
        {{"voice.wav", "o.wav", "p.png", "biquads=[-2.1 1.2 1 0 0]"}, unstable},
        {{"voice.wav", "o.wav", "p.png", "numerator=1; denominator=0"}, unstable},
    };
    expectRefusals("filter", cases);
}
