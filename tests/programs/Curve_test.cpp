// The curve program: the calibration that it draws and applies, what it says, and what it refuses.
#include "picture.h"
#include "program.h"
#include "refusals.h"
#include "sounds.h"
#include "support/random.h"

#include <gtest/gtest.h>

namespace
{

constexpr int left = 84, right = 972, top = 72, height = 240, gap = 66;
constexpr uint32_t blue = 0x0073b3, orange = 0xd65e00, green = 0x009e73;

struct Calibrated {
    int points;
    double least, most, change;
    Picture picture;
};

Calibrated calibrated(const std::vector<float> &samples, const std::string &points)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", samples);
    const auto outcome = runProgram("curve", {"in.wav", "p.png", "points=" + points}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.wav", "p.png"}));
    Calibrated result{};
    EXPECT_EQ(std::sscanf(outcome.out.c_str(),
                          "p.png: %d points, gain %lf to %lf dB; it changes the level of the sound by %lf dB",
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

TEST(CurveProgram, TwoPointsGiveALineOverTheLogarithmOfTheFrequencyAndStayConstantOutside)
{
    support::Random random;
    // The axis reaches one dB beyond the curve to either side: -7 to 1.
    const Calibrated line = calibrated(random.noise(48000), "[100 0; 10000 -6]");
    EXPECT_EQ(line.points, 2);
    EXPECT_EQ(line.least, -6);
    EXPECT_EQ(line.most, 0);
    const struct {
        double hertz, gain;
    } cases[] = {{30, 0}, {316.2, -1.5}, {1000, -3}, {3162, -4.5}, {20000, -6}};
    for (const auto &[hertz, gain] : cases) // the straight line covers the spline
        EXPECT_NEAR(curveAt(line.picture, orange, 0, hertz), (gain + 7) / 8, 0.02) << hertz;
    EXPECT_NEAR(curveAt(line.picture, green, 0, 101), 7.0 / 8, 0.02);
    EXPECT_NEAR(curveAt(line.picture, green, 0, 9900), 1.0 / 8, 0.02);
}

TEST(CurveProgram, TheGainAtAFrequencyIsThatOfTheSplineThere)
{
    // A sine between the points (100, 0), (1000, 6) and (10000, 0): over u = log10(f) - 2, the natural spline through
    // (0, 0), (1, 6) and (2, 0) is 9 u - 3 u^3 on the way up, 8.625 dB at u = 1/2.
    const Calibrated tone = calibrated(sine(316.2278, 0.5, 96000), "[100 0; 1000 6; 10000 0]");
    EXPECT_NEAR(tone.change, 9 * 0.5 - 3 * 0.125, 0.1);
    EXPECT_NEAR(tone.most, 6, 0.05);
    EXPECT_NEAR(tone.least, 0, 0.05);
    // Levels from -120 to 0 dB; in the column of the sine, its top is 6 dB down, and the calibrated one higher.
    const double plain = curveAt(tone.picture, blue, 1, 1000),
                 lifted = curveAt(tone.picture, orange, 1, 1000);
    EXPECT_NEAR((lifted - plain) * 120, 6, 1.5);
}

TEST(CurveProgram, ASoundWithoutPowerChangesByNothing)
{
    const Calibrated silent = calibrated(std::vector<float>(100, 0.0f), "[20 3; 20000 3]");
    EXPECT_EQ(silent.change, 0);
}

TEST(CurveProgram, RefusesWithOneLineAndWritesNothing)
{
    const std::string usage = "usage: curve SOUND PICTURE.png \"points=[HZ DB; HZ DB; ...]\"";
    const std::string give = "configuration: give points, 2 to 256 rows of two numbers";
    const std::string near = "configuration: the frequencies must be above 0, and not so near to each other";
    const std::string rising = "configuration: the first numbers of the points must rise from row to row";
    std::string many = "points=[";
    for (int i = 1; i <= 257; ++i)
        many += std::to_string(i) + " 0;";
    const std::vector<Refusal> cases = {
        {{}, usage},
        {{"voice.wav", "old.png"}, usage},
        {{"voice.wav", "old.png", "points=[1 2; 3 4]", "x"}, usage},
        {{"missing.wav", "old.png", "points=[1 2; 3 4]"}, "missing.wav: No such file or directory"},
        {{"none.wav", "old.png", "points=[1 2; 3 4]"}, "none.wav: holds no samples"},
        {{"voice.wav", "old.gif", "points=[1 2; 3 4]"}, "old.gif: the name of this file must end in .png"},
        {{"voice.wav", "old.png", ""}, give},
        {{"voice.wav", "old.png", "points=[1 2]"}, give},
        {{"voice.wav", "old.png", "points=[1 2 3; 4 5 6]"}, give},
        {{"voice.wav", "old.png", many + "]"}, give},
        {{"voice.wav", "old.png", "points=[1 2; 3]"},
         "configuration: points=[1 2; 3] is not a matrix such as [100 3; 1000 0; 5000 -2]"},
        {{"voice.wav", "old.png", "points=[1 2; 1 3]"}, rising},
        {{"voice.wav", "old.png", "points=[0 2; 1 3]"}, near},
        {{"voice.wav", "old.png", "points=[-2 2; -1 3]"}, near},
        {{"voice.wav", "old.png", "points=[1000 2; 1000.000001 3]"}, near},
        {{"voice.wav", "old.png", "point=[1 2; 3 4]"},
         "configuration: unknown key \"point\"; the keys are points"},
    };
    expectRefusals("curve", cases);
}
