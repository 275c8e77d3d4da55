// Ticks of axes, and how they are written.
#include "drawing/axis.h"

#include <orva/ORVAutil.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

using namespace orva;

namespace
{

std::string ticksOf(const Axis &scale, int most)
{
    const auto ticks = axisTicks(scale, most);
    std::string texts;
    for (size_t i = 0; i < ticks.size(); ++i)
        texts += (i > 0 ? " " : "") + axisText(scale, ticks, i);
    return texts;
}

Axis logarithmic(double first, double last)
{
    return axisFrequency(first, last, true);
}

} // namespace

TEST(AxisTicks, AreRoundAndWrittenAlike)
{
    const struct {
        Axis scale;
        int most;
        const char *label;
        const char *ticks;
    } cases[] = {
        {axisFrequency(0, 24000, false), 13, "Frequency (kHz)", "0 2 4 6 8 10 12 14 16 18 20 22 24"},
        {axisFrequency(0, 22050, false), 13, "Frequency (kHz)", "0 2 4 6 8 10 12 14 16 18 20 22"},
        {axisFrequency(0, 48000, false), 13, "Frequency (kHz)", "0 5 10 15 20 25 30 35 40 45"},
        {axisFrequency(0, 4000, false), 13, "Frequency (kHz)", "0.0 0.5 1.0 1.5 2.0 2.5 3.0 3.5 4.0"},
        {axisFrequency(0, 500, false), 6, "Frequency (Hz)", "0 100 200 300 400 500"},
        {axisFrequency(0, 0.5, false), 5, "Frequency (Hz)", "0.0 0.1 0.2 0.3 0.4 0.5"},
        {logarithmic(20, 20000), 9, "Frequency (Hz)", "20 50 100 200 500 1000 2000 5000 10000 20000"},
        {logarithmic(1, 1e6), 9, "Frequency (Hz)", "1 10 100 1000 10000 100000 1e+06"},
        {logarithmic(1e-3, 1e9), 6, "Frequency (Hz)", "0.001 0.1 10 1000 100000 1e+07 1e+09"},
        {logarithmic(300, 400), 5, "Frequency (Hz)", "300 320 340 360 380 400"},
        {logarithmic(0.05, 2), 9, "Frequency (Hz)", "0.05 0.1 0.2 0.5 1 2"},
        {axisMel(24000), 8, "Frequency (kHz, mel)", "0 0.2 0.5 1 2 5 10 20"},
        {axisMel(24000), 6, "Frequency (kHz, mel)", "0 0.5 1 2 5 10 20"},
        {axisMel(24000), 3, "Frequency (kHz, mel)", "0 1 5 20"},
        {axisMel(4000), 6, "Frequency (kHz, mel)", "0 0.2 0.5 1 2"},
        {axisMel(1000), 4, "Frequency (Hz, mel)", "0 100 500 1000"},
        {axisMel(0.5), 4, "Frequency (Hz, mel)", "0"},
        {axisBark(24000), 8, "Frequency (kHz, Bark)", "0 0.2 0.5 1 2 5 10 20"},
        {axisTime(3601, 3601.5), 5, "Time (s)", "3601.0 3601.1 3601.2 3601.3 3601.4 3601.5"},
        {axisTime(3600, 3660), 6, "Time (h:min:s)",
         "1:00:00 1:00:10 1:00:20 1:00:30 1:00:40 1:00:50 1:01:00"},
        {axisTime(0, 1.43), 9, "Time (s)", "0.0 0.2 0.4 0.6 0.8 1.0 1.2 1.4"},
        {axisTime(0, 119), 9, "Time (s)", "0 20 40 60 80 100"},
        {axisTime(0, 0.1), 5, "Time (ms)", "0 20 40 60 80 100"},
        {axisTime(0, 1 / 44100.0), 5, "Time (\u00b5s)", "0 5 10 15 20"},
        {axisTime(0, 300), 5, "Time (min:s)", "0:00 1:00 2:00 3:00 4:00 5:00"},
        {axisTime(0, 3000), 9, "Time (min:s)", "0:00 10:00 20:00 30:00 40:00 50:00"},
        {axisTime(0, 9000), 9, "Time (h:min:s)", "0:00:00 0:30:00 1:00:00 1:30:00 2:00:00 2:30:00"},
        {axisTime(0, 400000), 9, "Time (h:min:s)", "0:00:00 24:00:00 48:00:00 72:00:00 96:00:00"},
        {axisTime(0, 10 * 86400), 5, "Time (h:min:s)",
         "0:00:00 48:00:00 96:00:00 144:00:00 192:00:00 240:00:00"},
        {axisLinear(-90, 0, "dB"), 13, "dB",
         "\u221290 \u221280 \u221270 \u221260 \u221250 \u221240 \u221230 \u221220 \u221210 0"},
        {axisLinear(-1, 1, "y"), 4, "y", "\u22121.0 \u22120.5 0.0 0.5 1.0"},
        {axisPhase(), 7, "Phase (\u00b0)", "\u2212180 \u221290 0 90 180"},
        {axisPhase(), 14, "Phase (\u00b0)",
         "\u2212180 \u2212150 \u2212120 \u221290 \u221260 \u221230 0 30 60 90 120 150 180"},
        {axisPhase(), 3, "Phase (\u00b0)", "\u2212180 0 180"},
        {axisLinear(-1e30, 0, "y"), 2, "y", "\u22121e+30 \u22125e+29 0"},
        {axisLinear(0, 3e-9, "y"), 3, "y", "0 1e-09 2e-09 3e-09"},
        {axisLinear(0.3, 0.4, "y"), 1, "y", "0.3 0.4"},
        {axisLinear(0.145, 0.155, "y"), 1, "y", "0.15"},
        {axisLinear(5, 6, "y"), 0, "y", "5 6"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.scale.label, c.label);
        EXPECT_EQ(ticksOf(c.scale, c.most), c.ticks) << c.scale.first << " to " << c.scale.last;
    }
}

TEST(AxisTicks, NeverExceedTheirRoom)
{
    for (const double last : {1.0, 1.1, 1.99, 3.0, 4.9, 7.0, 9.99, 119.0, 121.0, 3599.0, 3601.0, 1e5, 1e12}) {
        for (int most = 1; most <= 1000; most += most < 40 ? 1 : 320) {
            const Axis scales[] = {axisLinear(0, last, ""), axisTime(0, last), axisMel(last), axisBark(last),
                                   axisLinear(-last, last / 7, "")};
            for (const Axis &scale : scales) {
                const auto ticks = axisTicks(scale, most);
                EXPECT_LE(ticks.size(), static_cast<size_t>(std::min<int>(most + 1, mostTicks)))
                    << last << ' ' << most;
                for (const double tick : ticks) {
                    EXPECT_GE(axisPlace(scale, tick), -1e-6);
                    EXPECT_LE(axisPlace(scale, tick), 1 + 1e-6);
                }
            }
        }
    }
}

TEST(AxisPlace, RunsFromEndToEnd)
{
    const Axis linear = axisLinear(-90, 10, "");
    EXPECT_DOUBLE_EQ(axisPlace(linear, -90), 0);
    EXPECT_DOUBLE_EQ(axisPlace(linear, -65), 0.25);
    EXPECT_DOUBLE_EQ(axisPlace(linear, 10), 1);
    const Axis scale = logarithmic(10, 100000);
    EXPECT_DOUBLE_EQ(axisPlace(scale, 10), 0);
    EXPECT_DOUBLE_EQ(axisPlace(scale, 1000), 0.5);
    EXPECT_DOUBLE_EQ(axisPlace(scale, 100000), 1);
    const Axis mel = axisMel(ORVAUTIL_Mels2Freq(4000));
    EXPECT_DOUBLE_EQ(axisPlace(mel, 0), 0);
    EXPECT_DOUBLE_EQ(axisPlace(mel, ORVAUTIL_Mels2Freq(1000)), 0.25);
    EXPECT_DOUBLE_EQ(axisPlace(mel, ORVAUTIL_Mels2Freq(4000)), 1);
    const Axis bark = axisBark(16000);
    EXPECT_DOUBLE_EQ(axisPlace(bark, 0), 0);
    EXPECT_DOUBLE_EQ(axisPlace(bark, 1000), ORVAUTIL_Freq2Bark(1000) / ORVAUTIL_Freq2Bark(16000));
    EXPECT_DOUBLE_EQ(axisPlace(bark, 16000), 1);
}

TEST(AxisLevel, EndsAtTheNextTenAboveTheLoudestOrAtNought)
{
    for (const auto &[loudest, top] : {std::pair{-8.9, 0.0}, {-10.0, -10.0}, {3.0, 10.0}, {-HUGE_VAL, 0.0}}) {
        const Axis scale = axisLevel(loudest, 80, "Energy (dB)");
        EXPECT_EQ(scale.last, top) << loudest;
        EXPECT_EQ(scale.first, top - 80) << loudest;
    }
}
