// orva curve: the calibration that it draws and applies, what it says, and what it refuses.
#include "orva.h"
#include "picture.h"

#include <gtest/gtest.h>

namespace
{

constexpr int left = 84, right = 972, top = 72 + 22, height = 240, gap = 66 + 22; // 22 for the legend
constexpr uint32_t blue = 0x0073b3, orange = 0xd65e00, green = 0x009e73;

struct Calibrated {
    int points;
    double least, most, change;
    Picture picture;
};

Calibrated calibrated(const std::vector<float> &samples, const std::string &points, SoundFormat how = {})
{
    const support::Folder folder;
    writeSound(folder / "in.wav", samples, how);
    const auto outcome = orvaRun({"curve", "in.wav", points, "p.png"}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.wav", "p.png"}));
    Calibrated result{};
    EXPECT_EQ(
        std::sscanf(outcome.out.c_str(),
                    "in.wav: %d points, gain %lf to %lf dB; it changes the level of the sound by %lf dB",
                    &result.points, &result.least, &result.most, &result.change),
        4)
        << outcome.out;
    result.picture = readPicture(folder / "p.png");
    return result;
}

double curveAt(const Picture &picture, uint32_t color, int panel, double hertz)
{
    const int x = left + static_cast<int>((right - left) * std::log(hertz / 20) / std::log(24000.0 / 20));
    return heightOf(picture, color, x, top + panel * (height + gap), height);
}

} // namespace

TEST(OrvaCurve, TwoPointsGiveALineOverTheLogarithmOfTheFrequencyAndStayConstantOutside)
{
    support::Random random;
    // The axis reaches one dB beyond the curve to either side: -7 to 1.
    const Calibrated line = calibrated(random.noise(48000), "100 0; 10000 -6");
    EXPECT_EQ(line.points, 2);
    EXPECT_EQ(line.least, -6);
    EXPECT_EQ(line.most, 0);
    const struct {
        double hertz, gain;
    } cases[] = {{22, 0},       {30, 0},    {70, 0},      {150, -0.528},
                 {316.2, -1.5}, {1000, -3}, {3162, -4.5}, {20000, -6}};
    for (const auto &[hertz, gain] : cases) // the straight line covers the spline
        EXPECT_NEAR(curveAt(line.picture, orange, 0, hertz), (gain + 7) / 8, 0.01) << hertz;
    EXPECT_NEAR(curveAt(line.picture, green, 0, 101), 7.0 / 8, 0.02);
    EXPECT_NEAR(curveAt(line.picture, green, 0, 9900), 1.0 / 8, 0.02);
}

TEST(OrvaCurve, TheGainAtAFrequencyIsThatOfTheSplineThere)
{
    // A sine between the points (100, 0), (1000, 6) and (10000, 0): over u = log10(f) - 2, the natural spline through
    // (0, 0), (1, 6) and (2, 0) is 9 u - 3 u^3 on the way up, 8.625 dB at u = 1/2.
    const Calibrated tone = calibrated(sine(316.2278, 0.5, 96000), "100 0; 1000 6; 10000 0");
    EXPECT_NEAR(tone.change, 9 * 0.5 - 3 * 0.125, 0.1);
    EXPECT_NEAR(tone.most, 6, 0.05);
    EXPECT_NEAR(tone.least, 0, 0.05);
    // Levels from -120 to 0 dB; in the column of the sine, its top is 6 dB down, and the calibrated one higher.
    const double plain = curveAt(tone.picture, blue, 1, 1000),
                 lifted = curveAt(tone.picture, orange, 1, 1000);
    EXPECT_NEAR((lifted - plain) * 120, 6, 1.5);
}

TEST(OrvaCurve, ASoundWithoutPowerChangesByNothingAndAllChannelsCount)
{
    EXPECT_EQ(calibrated(std::vector<float>(100, 0.0f), "20 3; 20000 3").change, 0);
    const auto low = sine(200, 0.25, 48000);
    const auto high = sine(8000, 0.25, 48000);
    std::vector<float> both;
    for (size_t i = 0; i < low.size(); ++i)
        both.insert(both.end(), {low[i], high[i]});
    // One of two equal sines is 10 dB louder: 10 log10((10 + 1) / 2).
    EXPECT_NEAR(calibrated(both, "1000 0; 1001 10", {.channels = 2}).change, 7.4, 0.06);
}

TEST(OrvaCurve, RefusesInOneLineAndWritesNothing)
{
    const support::Folder folder;
    putVoice(folder);
    std::string many;
    for (int i = 1; i <= 257; ++i)
        many += std::to_string(i) + " 0;";
    const std::string pairs = "' are not 2 to 256 pairs like \"100 3; 1000 0; 5000 -2\"";
    const std::string rising = "': the frequencies must be above 0 and rise from point to point";
    const struct {
        std::string points, says;
    } cases[] = {{"", pairs},
                 {"1 2", pairs},
                 {"1 2 3; 4 5 6", pairs},
                 {many, pairs},
                 {"1 2; 3", pairs},
                 {"100 0]; x=[1 2", pairs},
                 {"1 2; 1 3", rising},
                 {"0 2; 1 3", rising},
                 {"-2 2; -1 3", rising},
                 {"1000 2; 1000.000001 3", rising}};
    for (const auto &[points, says] : cases)
        expectRefused({"curve", "voice.wav", points, "p.png"}, folder, 2,
                      "orva curve: points '" + points + says);
    expectRefused({"curve", "voice.wav", "1 2; 3 4", "p.gif"}, folder, 2,
                  "orva curve: p.gif: the name of a picture ends in .png, .svg or .pdf");
}
