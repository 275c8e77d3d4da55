// What orva stretch writes: the sound, its picture, its map, its line.
#include "long_sounds.h"
#include "orva.h"
#include "picture.h"
#include "support/bits.h"

#include <orva/ORVAsolafs.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

struct Stretched {
    SF_INFO info;
    std::vector<float> samples;
    std::string line;
};

Stretched stretched(const std::string &input, const std::string &speed, const support::Folder &folder)
{
    const support::Outcome outcome =
        orvaRun({"stretch", input, "out.wav", "--speed=" + speed, "--picture=out.png"}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    Stretched result{{}, {}, outcome.out};
    result.samples = support::readSamples(folder / "out.wav", result.info);
    return result;
}

std::vector<float> channelOf(const std::vector<float> &samples, size_t channel, size_t channels)
{
    std::vector<float> one;
    for (size_t i = channel; i < samples.size(); i += channels)
        one.push_back(samples[i]);
    return one;
}

// Rising zeros a second.
double pitch(const std::vector<float> &samples, double rate)
{
    int count = 0;
    for (size_t i = 1; i < samples.size(); ++i)
        count += samples[i - 1] < 0 && samples[i] >= 0;
    return count * rate / static_cast<double>(samples.size());
}

} // namespace

TEST(OrvaStretch, AtSpeedOneGivesTheFileBack)
{
    const support::Folder folder;
    std::filesystem::create_symlink(support::recordingPath(), folder.path / "voice.wav");
    const std::vector<float> voice = support::recording();
    const Stretched result = stretched("voice.wav", "1", folder);
    ASSERT_GE(result.samples.size(), voice.size());
    EXPECT_LT(result.samples.size(), voice.size() + 480);
    for (size_t i = 0; i < result.samples.size(); ++i)
        ASSERT_NEAR(result.samples[i], i < voice.size() ? voice[i] : 0.0f, 1.0 / 32768) << i;
}

TEST(OrvaStretch, ChangesTheLengthAndKeepsThePitch)
{
    const support::Folder folder;
    const std::vector<float> tone = sine(440, 0.5, 48000);
    writeSound(folder / "tone.wav", tone);
    for (const double speed : {0.25, 0.8, 2.0, 3.0}) {
        const Stretched result = stretched("tone.wav", std::to_string(speed), folder);
        const double length = 48000 / speed;
        EXPECT_NEAR(static_cast<double>(result.samples.size()), length, 481) << speed;
        EXPECT_NEAR(pitch(result.samples, 48000), 440, 10) << speed;
    }
}

TEST(OrvaStretch, BringsTheEndOut)
{
    const support::Folder folder;
    std::vector<float> samples(48000, 0.0f);
    const std::vector<float> burst = sine(1000, 0.8, 2400); // 50 ms
    std::copy(burst.begin(), burst.end(), samples.end() - 2400);
    writeSound(folder / "end.wav", samples);
    for (const char *speed : {"0.5", "1", "2"}) {
        const std::vector<float> out = stretched("end.wav", speed, folder).samples;
        const auto loud = std::find_if(out.begin(), out.end(), [](float x) { return std::abs(x) > 0.3f; });
        EXPECT_NEAR(static_cast<double>(out.end() - loud), 2400 / std::stod(speed), 1500) << speed;
    }
}

TEST(OrvaStretch, EachSpeedHoldsFromItsSecondOn)
{
    const support::Folder folder;
    std::vector<float> samples = sine(440, 0.5, 144000);
    std::fill(samples.begin() + 48000, samples.begin() + 96000, 0.0f); // a second of tone, silence, tone
    writeSound(folder / "three.wav", samples);
    const struct {
        const char *speed;
        double first, second, third; // seconds in the output
    } cases[] = {{"1 1:2", 1, 0.5, 0.5},
                 {"1:2", 1, 0.5, 0.5}, // 1 before the first
                 {"2,1:0.5,2:1", 0.5, 2, 1},
                 {"0.5 1:0.5\t2:2.5", 2, 2, 0.4},
                 {"1 2:2 10:3", 1, 1, 0.5}}; // one after the end never comes
    for (const auto &c : cases) {
        const std::vector<float> out = stretched("three.wav", c.speed, folder).samples;
        const auto isLoud = [](float x) { return std::abs(x) > 0.25f; };
        const auto secondsTo = [&](auto place) { return static_cast<double>(place - out.begin()) / 48000; };
        const auto half = out.begin() + static_cast<ptrdiff_t>((c.first + c.second / 2) * 48000);
        EXPECT_NEAR(secondsTo(std::find_if(std::reverse_iterator(half), out.rend(), isLoud).base()), c.first,
                    0.12)
            << c.speed;
        EXPECT_NEAR(secondsTo(std::find_if(half, out.end(), isLoud)), c.first + c.second, 0.12) << c.speed;
        EXPECT_NEAR(secondsTo(out.end()), c.first + c.second + c.third, 0.12) << c.speed;
    }
}

TEST(OrvaStretch, EveryChannelIsStretchedAsIfAlone)
{
    const support::Folder folder;
    const std::vector<std::vector<float>> channels{sine(220, 0.5, 9000), sine(555, 0.4, 9000),
                                                   sine(70, 0.7, 9000)};
    std::vector<float> all;
    for (size_t i = 0; i < 9000; ++i)
        for (const auto &channel : channels)
            all.push_back(channel[i]);
    writeSound(folder / "three.wav", all, {.rate = 44100, .channels = 3});
    const Stretched result = stretched("three.wav", "1.4 0.1:0.7", folder);
    ASSERT_EQ(result.info.channels, 3);
    for (size_t c = 0; c < 3; ++c) {
        writeSound(folder / "one.wav", channels[c], {.rate = 44100});
        EXPECT_EQ(channelOf(result.samples, c, 3), stretched("one.wav", "1.4 0.1:0.7", folder).samples) << c;
    }
}

TEST(OrvaStretch, KeepsRateAndSampleFormat)
{
    const support::Folder folder;
    const int formats[] = {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_FLOAT, SF_FORMAT_PCM_U8};
    const int rates[] = {400, 8000, 96000, 1000000};
    for (int i = 0; i < 4; ++i) {
        writeSound(folder / "in.wav", sine(50, 0.5, 3000),
                   {.rate = rates[i], .format = SF_FORMAT_WAV | formats[i]});
        const Stretched result = stretched("in.wav", "0.9", folder);
        EXPECT_EQ(result.info.samplerate, rates[i]);
        EXPECT_EQ(result.info.format & SF_FORMAT_SUBMASK, formats[i]);
    }
}

TEST(OrvaStretch, ASingleSampleIsASoundToo)
{
    const support::Folder folder;
    writeSound(folder / "one.wav", {0.5f});
    for (const char *speed : {"0.1", "1", "3"}) {
        const Stretched result = stretched("one.wav", speed, folder);
        EXPECT_GE(result.samples.size(), 1U);
        EXPECT_EQ(result.samples.size() % 480, 0U);
    }
}

TEST(OrvaStretch, PictureMarksWhatIsHeardAtAQuarterAHalfAndThreeQuarters)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", std::vector<float>(96000, 0.0f)); // a second at speed 2, then one at 1/2
    const Stretched result = stretched("in.wav", "2 1:0.5", folder);
    const double length = static_cast<double>(result.samples.size()) / 48000;
    const auto heardAt = [](double second) { return second < 0.5 ? 2 * second : 1 + (second - 0.5) / 2; };
    char line[128];
    std::snprintf(line, sizeof line, "out.wav: 2.00 s became %.2f s; its middle is what stood at %.2f s\n",
                  length, heardAt(length / 2));
    EXPECT_EQ(result.line, line);
    EXPECT_NEAR(length, 2.5, 0.05); // the end of both axes

    const Picture picture = readPicture(folder / "out.png");
    constexpr int left = 84, width = 888, top = 72, height = 220, gap = 66;
    const auto inkIn = [&](int panel, double place) { // of a dashed line
        const int x = left + static_cast<int>(std::lround(width * place));
        int most = 0;
        for (int column = x - 3; column <= x + 3; ++column) {
            int ink = 0;
            for (int y = 30; y < 100; ++y)
                ink += distance(picture.at(column, top + panel * (height + gap) + y), 0x212121) < 90;
            most = std::max(most, ink);
        }
        return most;
    };
    for (const double quarter : {0.25, 0.5, 0.75}) {
        EXPECT_GT(inkIn(0, heardAt(quarter * length) / length), 30) << quarter;
        EXPECT_GT(inkIn(1, quarter), 30) << quarter;
    }
    for (const double place : {0.1, 0.3, 0.9}) {
        EXPECT_EQ(inkIn(0, place), 0);
        EXPECT_EQ(inkIn(1, place), 0);
    }
}

// The search compares energies that begin at 1, so the level of the samples counts.
TEST(OrvaStretch, RunsAtTheScaleOf16BitSamples)
{
    const support::Folder folder;
    const std::vector<float> voice = support::recording();
    writeSound(folder / "in.wav", voice);
    ORVA_SOLAFS *scaler = ORVA_SolafsCreate(20, 48000, 1);
    std::vector<float> expected;
    std::vector<float> out(200000);
    std::vector<float> in = voice;
    in.resize(voice.size() + 3360); // the silence that brings out the tail
    for (size_t start = 0; start < in.size(); start += 4800) {
        std::vector<float> block(in.begin() + static_cast<ptrdiff_t>(start),
                                 in.begin() + static_cast<ptrdiff_t>(std::min(start + 4800, in.size())));
        for (float &sample : block)
            sample *= 32768;
        EXPECT_EQ(ORVA_SolafsInputData(scaler, 0, block.data(), static_cast<int32_t>(block.size()), 0.7f),
                  static_cast<int32_t>(block.size()));
        const int32_t given = ORVA_SolafsOutputData(scaler, 0, out.data(), static_cast<int32_t>(out.size()));
        expected.insert(expected.end(), out.begin(), out.begin() + given);
    }
    ORVA_SolafsDestroy(scaler);
    for (float &sample : expected)
        sample /= 32768;
    EXPECT_TRUE(support::sameBits(stretched("in.wav", "0.7", folder).samples, expected));
}

TEST(OrvaStretch, MapTellsWhatIsHeardAtEachHundredth)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", std::vector<float>(96000, 0.0f)); // a second at speed 2, then one at 1/2
    EXPECT_EQ(orvaRun({"stretch", "in.wav", "out.wav", "--speed=2 1:0.5", "--map=map.csv"}, folder).status,
              0);
    std::ifstream lines(folder / "map.csv");
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "output_seconds,input_seconds");
    int count = 0;
    for (; std::getline(lines, line); ++count) {
        double output = -1;
        double input = -1;
        ASSERT_EQ(std::sscanf(line.c_str(), "%lf,%lf", &output, &input), 2) << line;
        EXPECT_NEAR(output, count / 100.0, 1e-9);
        EXPECT_NEAR(input, output < 0.5 ? 2 * output : 1 + (output - 0.5) / 2, 0.01) << output;
    }
    EXPECT_NEAR(count, 251, 5);
}

TEST(OrvaStretch, LongFilesRunInConstantMemory)
{
    // The samples alone are 9600 kB.
    expectConstantMemory("orva", {"stretch", "in.wav", "out.wav", "--speed=1"}, 300, 2000);
}

TEST(OrvaStretch, NotesDamagedInputAndGoesOn)
{
    const support::Folder folder;
    std::vector<float> samples = sine(440, 0.5, 9000);
    samples[4000] = std::numeric_limits<float>::quiet_NaN();
    writeSound(folder / "in.wav", samples);
    const support::Outcome outcome = orvaRun({"stretch", "in.wav", "out.wav", "--speed=1.5"}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "in.wav: 1 sample is not finite; taken as 0\n");
}
