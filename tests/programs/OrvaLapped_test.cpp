// orva lapped: the sound after the gate, the error that it tells, its picture, and what it refuses.
#include "drawing/colormap.h"
#include "orva.h"
#include "picture.h"

#include <gtest/gtest.h>

namespace
{

using orva::colormapColor;

struct Lapped {
    SF_INFO info;
    std::vector<float> samples;
    double passed; // percent
    double error;  // dB
};

Lapped lapped(const std::string &input, const std::vector<std::string> &how, const support::Folder &folder)
{
    std::vector<std::string> words{"lapped", input, "out.wav", "--picture=out.png"};
    words.insert(words.end(), how.begin(), how.end());
    const auto outcome = orvaRun(words, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    Lapped result{};
    EXPECT_EQ(
        std::sscanf(outcome.out.c_str(),
                    "out.wav: %*f s, through the gate: %lf %% of the coefficients; error without it: %lf",
                    &result.passed, &result.error),
        2)
        << outcome.out;
    result.samples = support::readSamples(folder / "out.wav", result.info);
    return result;
}

// Amplitude of a sine in samples, its phase whatever it is.
double amplitude(const std::vector<float> &samples, double hertz, double rate = 48000)
{
    double re = 0, im = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const double angle = 2 * std::numbers::pi * hertz * static_cast<double>(i) / rate;
        re += static_cast<double>(samples[i]) * std::cos(angle);
        im += static_cast<double>(samples[i]) * std::sin(angle);
    }
    return 2 * std::hypot(re, im) / static_cast<double>(samples.size());
}

} // namespace

TEST(OrvaLapped, AnOpenGateGivesEverySampleOfEveryChannelBackAtItsPlace)
{
    support::Random random;
    for (const size_t frames : {1, 511, 512, 513, 5000})
        for (const int channels : {1, 3}) {
            const support::Folder folder;
            const auto samples = random.noise(frames * static_cast<size_t>(channels));
            writeSound(folder / "in.wav", samples, {.rate = 44100, .channels = channels});
            const Lapped result = lapped("in.wav", {"--gate=-300"}, folder);
            EXPECT_EQ(result.info.channels, channels);
            EXPECT_EQ(result.info.samplerate, 44100);
            ASSERT_EQ(result.samples.size(), samples.size());
            for (size_t i = 0; i < samples.size(); ++i)
                ASSERT_NEAR(result.samples[i], samples[i], 2e-6) << i << " of " << frames;
        }
}

TEST(OrvaLapped, TellsTheErrorOfTheTransformWhereFourDividesTheBlockAndWhereNot)
{
    const support::Folder folder;
    support::Random random;
    writeSound(folder / "noise.wav", random.noise(12000));
    for (const int block : {4, 12, 512, 1000, 65536})
        EXPECT_LT(lapped("noise.wav", {"--block=" + std::to_string(block)}, folder).error, -130) << block;
    for (const int block : {1, 2, 3, 510})
        EXPECT_GT(lapped("noise.wav", {"--block=" + std::to_string(block)}, folder).error, -60) << block;
}

TEST(OrvaLapped, TheGateTakesAwayWhatIsFaintAndLeavesTheRest)
{
    const support::Folder folder;
    auto samples = sine(3000, 0.25, 48000);        // -12 dB
    const auto faint = sine(12000, 0.0005, 48000); // -66 dB
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] += faint[i];
    writeSound(folder / "in.wav", samples);
    const Lapped closed = lapped("in.wav", {"--block=512", "--gate=-60"}, folder);
    const Picture picture = readPicture(folder / "out.png");
    EXPECT_NEAR(amplitude(closed.samples, 3000), 0.25, 0.001);
    EXPECT_LT(amplitude(closed.samples, 12000), 0.00002);
    EXPECT_NEAR(amplitude(lapped("in.wav", {"--gate=-72"}, folder).samples, 12000), 0.0005, 0.00002);
    EXPECT_EQ(lapped("in.wav", {"--gate=-6"}, folder).passed, 0);

    // Two panels of 804 by 230 points; 12 kHz is half their height, and -66 dB 0.34 of the colour scale.
    constexpr int x = 84 + 402, before = 72 + 115, after = 72 + 230 + 66 + 115;
    EXPECT_EQ(picture.height, 72 + 2 * (230 + 66));
    EXPECT_LE(distance(picture.at(x, before), colormapColor(0.34)), 12);
    EXPECT_EQ(picture.at(x, after), colormapColor(0));
    for (const int top : {72, 72 + 230 + 66}) // 3 kHz
        EXPECT_LE(distance(picture.at(x, top + 230 - 29), colormapColor(0.88)), 12);
}

TEST(OrvaLapped, WorksOnSilence)
{
    const support::Folder folder;
    writeSound(folder / "silent.wav", std::vector<float>(1000, 0.0f));
    const Lapped result = lapped("silent.wav", {"--block=64"}, folder);
    EXPECT_EQ(result.samples, std::vector<float>(1000, 0.0f));
    EXPECT_EQ(result.passed, 0);
    EXPECT_EQ(result.error, -HUGE_VAL);
}

TEST(OrvaLapped, RefusesInOneLineAndWritesNothing)
{
    expectRefusals({
        {{"lapped", "voice.wav"}, 2, "orva lapped: output is required; see 'orva lapped --help'"},
        {{"lapped", "voice.wav", "o.wav", "--block=0"},
         2,
         "orva lapped: --block: Value 0 not in range 1 to 65536; see 'orva lapped --help'"},
        {{"lapped", "voice.wav", "o.wav", "--gate=-301"},
         2,
         "orva lapped: --gate: Value -301 not in range -300.000000 to 300.000000; see 'orva lapped --help'"},
    });
}
