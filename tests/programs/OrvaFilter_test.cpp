// orva filter and orva response: the sound, the table, the picture, and what they refuse.
#include "frequency_response.h"
#include "orva.h"
#include "picture.h"
#include "support/bits.h"
#include "support/random.h"

#include <orva/ORVAfilter.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

// Where the panels stand in the picture, and what their axes hold at a rate of 48000 Hz.
constexpr int left = 84, right = 972, height = 220, gainTop = 94, phaseTop = 402, planeTop = 1018,
              planeHeight = 400;

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
    const support::Outcome outcome = orvaRun({"response", config, "p.png"}, folder);
    EXPECT_EQ(outcome.status, 0) << config;
    EXPECT_EQ(outcome.err, "") << config;
    return readPicture(folder / "p.png");
}

} // namespace

TEST(OrvaFilter, WritesWhatTheLibraryMakesOfEveryChannel)
{
    support::Random random;
    for (const int channels : {1, 2, 3, 8}) {
        const support::Folder folder;
        auto samples = random.noise(static_cast<size_t>(channels) * 10000);
        writeSound(folder / "in.wav", samples, {.channels = channels});
        const support::Outcome outcome = orvaRun(
            {"filter", "in.wav", "out.wav", "biquads=[-0.9 0.3 0.1 0.2 0.1; -1.1 0.4 0.2 0.4 0.2]"}, folder);
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
        EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.wav", "out.wav"}));
    }
}

TEST(OrvaFilter, DesignsAtTheRateAndWithTheChannelsOfTheSound)
{
    support::Random random;
    for (const int rate : {8000, 44100}) {
        const support::Folder folder;
        auto samples = random.noise(20000);
        writeSound(folder / "in.wav", samples, {.rate = rate, .channels = 2});
        const std::string config =
            "type=bandpass; approximation=cheby1; order=3; Ap=0.5; fpass1=300; fpass2=3400";
        const support::Outcome outcome = orvaRun({"filter", "in.wav", "out.wav", config}, folder);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");

        _ORVA_FILTER *filter = ORVA_CreateFilter("%s; fs=%d; nc=2", config.c_str(), rate);
        ORVA_Filter(filter, samples.data(), samples.data(), static_cast<uint32_t>(samples.size()));
        ORVA_DestroyFilter(filter);
        SF_INFO info;
        EXPECT_TRUE(support::sameBits(support::readSamples(folder / "out.wav", info), samples)) << rate;
    }
}

TEST(OrvaFilter, DrawsADesignThroughItsEdges)
{
    const Picture telephone = responseOf("type=bandpass; order=4; fpass1=300; fpass2=3400; gain=0.5");
    for (const double hertz : {300.0, 3400.0})
        EXPECT_NEAR(curveAt(telephone, columnOf(hertz), gainTop), 1 - (6.02 + 3.0) / 80, 0.02) << hertz;
    EXPECT_NEAR(curveAt(telephone, columnOf(1000), gainTop), 1 - 6.02 / 80, 0.01);
}

// It turns over from -180 to 180 degrees, and jumps at the zeros.
TEST(OrvaFilter, PhaseIsDrawnFromEndToEndWithoutStrayLines)
{
    for (const char *text : {"order=8; fpass=1000", "approximation=ellip; As=60; fpass=3400; fstop=4000",
                             "biquads=[0 0 0 0 1; 0 0 0 0 1; 0 0 0 0 1]"}) {
        const Picture picture = responseOf(text);
        for (int x = left + 1; x < right - 1; ++x) {
            int painted = 0;
            for (int y = phaseTop; y < phaseTop + height; ++y)
                painted += distance(picture.at(x, y), 0x0073b3) < 60;
            EXPECT_LT(painted, 90) << text << " at " << x;
            EXPECT_GT(painted, x < columnOf(900) ? 0 : -1) << text << " at " << x;
        }
    }
}

// One pole pair at a quarter of the rate, and zeros at 1 and -1.
TEST(OrvaFilter, PolesAndZerosStandInTheirPlane)
{
    const Picture picture = responseOf("biquads=[0 0.81 1 0 -1]");
    const double reach = 1.12;
    const auto marked = [&](double re, double im, uint32_t color) {
        const int x = (left + right) / 2 + static_cast<int>(re / reach * planeHeight / 2);
        const int y = planeTop + static_cast<int>((1 - im / reach) * planeHeight / 2);
        int count = 0;
        for (int i = y - 8; i <= y + 8; ++i)
            for (int j = x - 8; j <= x + 8; ++j)
                count += distance(picture.at(j, i), color) < 60;
        return count;
    };
    const uint32_t blue = 0x0073b3, orange = 0xd65e00;
    for (const double side : {-1.0, 1.0}) {
        EXPECT_GT(marked(side, 0, blue), 15);
        EXPECT_EQ(marked(side, 0, orange), 0);
        EXPECT_GT(marked(0, 0.9 * side, orange), 15);
        EXPECT_EQ(marked(0, 0.9 * side, blue), 0);
    }
    EXPECT_EQ(marked(0, 0, blue) + marked(0, 0, orange), 0);
}

TEST(OrvaFilter, ListsPolesAndZeros)
{
    const support::Folder folder;
    const struct {
        const char *text, *poles, *zeros;
    } cases[] = {
        {"biquads=[0 0.81 1 0 -1]", "poles: 2; radius 0.90000 at 12000.0 Hz",
         "zeros: 2; radius 1.00000 at 0.0 Hz, 1.00000 at 24000.0 Hz"},
        {"biquads=[0 0 0 1 0]", "poles: 1; radius 0.00000 at 0.0 Hz", "zeros: 0"},
        {"numerator=[1 0 0 0 1]; denominator=2", "poles: 4; radius 0.00000 at 0.0 Hz (4 times)",
         "zeros: 4; radius 1.00000 at 6000.0 Hz, 1.00000 at 18000.0 Hz"},
        {"numerator=1; denominator=[1 -0.5]", "poles: 1; radius 0.50000 at 0.0 Hz",
         "zeros: 1; radius 0.00000 at 0.0 Hz"},
        {"order=2; fpass=12000", "poles: 2; radius 0.41", "zeros: 2; radius 1.00000 at 24000.0 Hz (2 times)"},
        {"type=bandreject; order=1; fpass1=11900; fpass2=12100", "poles: 2; radius 0.98",
         "zeros: 2; radius 1.00000 at 12000.0 Hz"},
    };
    for (const auto &c : cases) {
        const std::string text = orvaRun({"response", c.text}, folder).out;
        EXPECT_NE(text.find(std::string("\n") + c.poles), std::string::npos) << text;
        EXPECT_NE(text.find(std::string("\n") + c.zeros), std::string::npos) << text;
    }
}

TEST(OrvaFilter, TakesNumeratorAndDenominator)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", {1.0F, 0.0F, 0.0F, 0.0F});
    const support::Outcome outcome =
        orvaRun({"filter", "in.wav", "out.wav", "numerator=[2 4]; denominator=[2 1]"}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    SF_INFO info;
    EXPECT_EQ(support::readSamples(folder / "out.wav", info),
              (std::vector<float>{1.0F, 1.5F, -0.75F, 0.375F}));
}

// The axis of the gain ends at the next ten dB above the greatest gain, 80 dB above its start.
TEST(OrvaFilter, DrawsTheMeasuredGainAndPhase)
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

TEST(OrvaFilter, WorksWhereAFilterLetsNothingThrough)
{
    const support::Folder folder;
    putVoice(folder);
    const support::Outcome outcome =
        orvaRun({"filter", "voice.wav", "out.wav", "numerator=0, denominator=1"}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "out.wav: 1.43 s, 1 channel, loudest sample 0\n");
    EXPECT_EQ(orvaRun({"response", "numerator=0, denominator=1", "p.png"}, folder).status, 0);
    EXPECT_EQ(readPicture(folder / "p.png").width, 1000);
}

// Half the sum of two neighbours has the gain cos(w / 2) and is half a sample late.
TEST(OrvaFilter, TableHoldsGainPhaseDelayAndTheEdges)
{
    const support::Folder folder;
    const support::Outcome mean =
        orvaRun({"response", "numerator=[0.5 0.5]; denominator=1", "--rate=200"}, folder);
    EXPECT_EQ(mean.out, "greatest gain: 0.00 dB; 3 dB below it: 50.0 Hz\n"
                        "        Hz    gain dB    phase \u00b0  delay, samples\n"
                        "       0.0       0.00        0.0         0.50\n"
                        "       1.0       0.00       -0.9         0.50\n"
                        "       2.0       0.00       -1.8         0.50\n"
                        "       5.0      -0.03       -4.5         0.50\n"
                        "      10.0      -0.11       -9.0         0.50\n"
                        "      20.0      -0.44      -18.0         0.50\n"
                        "      50.0      -3.01      -45.0         0.50\n"
                        "     100.0 below -200          -            -\n"
                        "poles: 1; radius 0.00000 at 0.0 Hz\n"
                        "zeros: 1; radius 1.00000 at 100.0 Hz\n");
    const support::Outcome band =
        orvaRun({"response", "type=bandpass; order=4; fpass1=300; fpass2=3400", "--rate=16k"}, folder);
    EXPECT_TRUE(band.out.starts_with("greatest gain: 0.00 dB; 3 dB below it: 299.")) << band.out;
    EXPECT_NE(band.out.find(", 3401."), std::string::npos) << band.out;
    EXPECT_NE(band.out.find("\n     300.0      -3.00 "), std::string::npos) << band.out;
    EXPECT_NE(band.out.find("  fpass1\n"), std::string::npos) << band.out;
    EXPECT_NE(band.out.find("  fpass2\n"), std::string::npos) << band.out;
}

// Two zeros at half the rate, as each low pass has them: there is a delay up to them, and none at them.
TEST(OrvaFilter, HasNoDelayWhereNothingPasses)
{
    const std::vector<orva::Section> sections(3, {{1, 2, 1}, {1, 0, 0.25}});
    const auto curve = orva::responseCurve(sections, 48000, 1000);
    const orva::ResponseAt before = curve[998];
    const orva::ResponseAt last = curve[999];
    EXPECT_EQ(last.hertz, 24000);
    EXPECT_NEAR(before.delaySamples, 3 * (1 - 0.4), 0.01) << "1 of two zeros, less 0.4 of the poles";
    EXPECT_EQ(last.gainDb, -HUGE_VAL);
    EXPECT_TRUE(std::isnan(last.delaySamples)) << last.delaySamples;
    EXPECT_TRUE(std::isnan(last.phaseDegrees)) << last.phaseDegrees;
}

TEST(OrvaFilter, RefusesInOneLineAndWritesNothing)
{
    const support::Folder folder;
    putVoice(folder);
    const std::string information = "orva filter: ORVA_CreateFilter: you must specify As or order";
    const std::string nothing = "orva filter: no filter has these edges, attenuations and order";
    const std::string edge = " is not a frequency below half the sampling rate";
    const std::string columns = "orva filter: a row of biquads has 5 numbers, a1, a2, b0, b1 and b2, not ";
    const std::string unstable = "orva filter: this filter is not stable";
    const struct {
        const char *text;
        std::string says;
    } cases[] = {
        {"", information},
        {"numerator=[1 2]", information},
        {"order=4", "orva filter: ORVA_CreateFilter: You must specify a cutoff frequency (fpass)"},
        {"type=tophat; order=4; fpass=300", "orva filter: ORVA_CreateFilter: Invalid filter type: tophat"},
        {"approximation=elliptic; order=4; fpass=300",
         "orva filter: ORVA_CreateFilter: Invalid approximation (elliptic)"},
        {"order=4; fpass=0", nothing},
        {"type=bp; order=4; fpass1=3400; fpass2=300", nothing},
        {"order=4; fpass=24000", "orva filter: fpass=24000" + edge},
        {"As=40; fpass=300; fstop=5e4", "orva filter: fstop=5e4" + edge},
        {"order=0; fpass=300", "orva filter: order=0 is not a whole number from 1 to 1000"},
        {"order=4; Ap=0; fpass=300", "orva filter: Ap=0 is not a number of decibels above 0"},
        {"order=4; fpass=300; gain=-1", "orva filter: gain=-1 is not a number from 0 to 1000000"},
        {"biquads=[1 2 3 4]", columns + "4"},
        {"biquads=7", columns + "1"},
        {"biquads=[1 2; 3]",
         "orva filter: biquads=[1 2; 3] is not a matrix such as [a1 a2 b0 b1 b2; a1 a2 b0 b1 b2]"},
        {"numerator=[1; 2]; denominator=1", "orva filter: numerator=[1; 2] is not a vector such as [1 -1]"},
        {"numerator=1; denominator=one", "orva filter: denominator=one is not a vector such as [1 -0.9]"},
        {"biquad=[0 0 1 0 0]",
         "orva filter: there is no key 'biquad', did you mean 'biquads'?; the keys are type, approximation, "
         "order, fpass, fpass1, "
         "fpass2, fstop, fstop1, fstop2, Ap, As, gain, biquads, numerator, denominator"},
        {"biquads=[-2.1 1.2 1 0 0]", unstable},
        {"numerator=1; denominator=0", unstable},
    };
    for (const auto &[text, says] : cases)
        expectRefused({"filter", "voice.wav", "o.wav", text}, folder, 2, says);
    expectRefused({"response", "order=4; fpass=100", "p.gif"}, folder, 2,
                  "orva response: p.gif: the name of a picture ends in .png, .svg or .pdf");
}
