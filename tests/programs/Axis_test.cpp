// Ticks of axes, and how they are written.
extern "C" {
#include "common/axis.h"
}

#include <gtest/gtest.h>
#include <orva/ORVAutil.h>
#include <string>

namespace
{

std::string ticksOf(const axis &scale, int most)
{
    double ticks[AXIS_TICKS];
    const int count = axis_ticks(&scale, most, ticks);
    std::string texts;
    for (int i = 0; i < count; ++i) {
        char text[32];
        axis_text(&scale, ticks, count, i, text, sizeof text);
        texts += i > 0 ? " " : "";
        texts += text;
    }
    return texts;
}

axis logarithmic(double first, double last)
{
    return axis_frequency(first, last, true);
}

} // namespace

TEST(AxisTicks, AreRoundAndWrittenAlike)
{
    const struct {
        axis scale;
        int most;
        const char *label;
        const char *ticks;
    } cases[] = {
        {axis_frequency(0, 24000, false), 13, "Frequency (kHz)", "0 2 4 6 8 10 12 14 16 18 20 22 24"},
        {axis_frequency(0, 22050, false), 13, "Frequency (kHz)", "0 2 4 6 8 10 12 14 16 18 20 22"},
        {axis_frequency(0, 48000, false), 13, "Frequency (kHz)", "0 5 10 15 20 25 30 35 40 45"},
        {axis_frequency(0, 4000, false), 13, "Frequency (kHz)", "0.0 0.5 1.0 1.5 2.0 2.5 3.0 3.5 4.0"},
        {axis_frequency(0, 500, false), 6, "Frequency (Hz)", "0 100 200 300 400 500"},
        {axis_frequency(0, 0.5, false), 5, "Frequency (Hz)", "0.0 0.1 0.2 0.3 0.4 0.5"},
        {logarithmic(20, 20000), 9, "Frequency (Hz)", "20 50 100 200 500 1000 2000 5000 10000 20000"},
        {logarithmic(1, 1e6), 9, "Frequency (Hz)", "1 10 100 1000 10000 100000 1e+06"},
        {logarithmic(1e-3, 1e9), 6, "Frequency (Hz)", "0.001 0.1 10 1000 100000 1e+07 1e+09"},
        {logarithmic(300, 400), 5, "Frequency (Hz)", "300 320 340 360 380 400"},
        {logarithmic(0.05, 2), 9, "Frequency (Hz)", "0.05 0.1 0.2 0.5 1 2"},
        {axis_mel(24000), 8, "Frequency (kHz, mel)", "0 0.2 0.5 1 2 5 10 20"},
        {axis_mel(24000), 6, "Frequency (kHz, mel)", "0 0.5 1 2 5 10 20"},
        {axis_mel(24000), 3, "Frequency (kHz, mel)", "0 1 5 20"},
        {axis_mel(4000), 6, "Frequency (kHz, mel)", "0 0.2 0.5 1 2"},
        {axis_mel(1000), 4, "Frequency (Hz, mel)", "0 100 500 1000"},
        {axis_mel(0.5), 4, "Frequency (Hz, mel)", "0"},
        {axis_time(1.43), 9, "Time (s)", "0.0 0.2 0.4 0.6 0.8 1.0 1.2 1.4"},
        {axis_time(119), 9, "Time (s)", "0 20 40 60 80 100"},
        {axis_time(0.1), 5, "Time (ms)", "0 20 40 60 80 100"},
        {axis_time(1 / 44100.0), 5, "Time (\u00b5s)", "0 5 10 15 20"},
        {axis_time(300), 5, "Time (min:s)", "0:00 1:00 2:00 3:00 4:00 5:00"},
        {axis_time(3000), 9, "Time (min:s)", "0:00 10:00 20:00 30:00 40:00 50:00"},
        {axis_time(9000), 9, "Time (h:min:s)", "0:00:00 0:30:00 1:00:00 1:30:00 2:00:00 2:30:00"},
        {axis_time(400000), 9, "Time (h:min:s)", "0:00:00 24:00:00 48:00:00 72:00:00 96:00:00"},
        {axis_time(10 * 86400), 5, "Time (h:min:s)",
         "0:00:00 48:00:00 96:00:00 144:00:00 192:00:00 240:00:00"},
        {axis_linear(-90, 0, "dB"), 13, "dB",
         "\u221290 \u221280 \u221270 \u221260 \u221250 \u221240 \u221230 \u221220 \u221210 0"},
        {axis_linear(-1, 1, "y"), 4, "y", "\u22121.0 \u22120.5 0.0 0.5 1.0"},
        {axis_phase(), 7, "Phase (\u00b0)", "\u2212180 \u221290 0 90 180"},
        {axis_phase(), 14, "Phase (\u00b0)",
         "\u2212180 \u2212150 \u2212120 \u221290 \u221260 \u221230 0 30 60 90 120 150 180"},
        {axis_phase(), 3, "Phase (\u00b0)", "\u2212180 0 180"},
        {axis_linear(-1e30, 0, "y"), 2, "y", "\u22121e+30 \u22125e+29 0"},
        {axis_linear(0, 3e-9, "y"), 3, "y", "0 1e-09 2e-09 3e-09"},
        {axis_linear(0.3, 0.4, "y"), 1, "y", "0.3 0.4"},
        {axis_linear(0.145, 0.155, "y"), 1, "y", "0.15"},
        {axis_linear(5, 6, "y"), 0, "y", "5 6"},
    };
    for (const auto &c : cases) {
        EXPECT_STREQ(c.scale.label, c.label);
        EXPECT_EQ(ticksOf(c.scale, c.most), c.ticks) << c.scale.first << " to " << c.scale.last;
    }
}

TEST(AxisTicks, NeverExceedTheirRoom)
{
    for (const double last : {1.0, 1.1, 1.99, 3.0, 4.9, 7.0, 9.99, 119.0, 121.0, 3599.0, 3601.0, 1e5, 1e12}) {
        for (int most = 1; most <= 1000; most += most < 40 ? 1 : 320) {
            double ticks[AXIS_TICKS];
            const axis scales[] = {axis_linear(0, last, ""), axis_time(last), axis_mel(last),
                                   axis_linear(-last, last / 7, "")};
            for (const axis &scale : scales) {
                const int count = axis_ticks(&scale, most, ticks);
                EXPECT_LE(count, std::min(most + 1, static_cast<int>(AXIS_TICKS))) << last << ' ' << most;
                for (int i = 0; i < count; ++i) {
                    EXPECT_GE(axis_place(&scale, ticks[i]), -1e-6);
                    EXPECT_LE(axis_place(&scale, ticks[i]), 1 + 1e-6);
                }
            }
        }
    }
}

TEST(AxisPlace, RunsFromEndToEnd)
{
    const axis linear = axis_linear(-90, 10, "");
    EXPECT_DOUBLE_EQ(axis_place(&linear, -90), 0);
    EXPECT_DOUBLE_EQ(axis_place(&linear, -65), 0.25);
    EXPECT_DOUBLE_EQ(axis_place(&linear, 10), 1);
    const axis scale = logarithmic(10, 100000);
    EXPECT_DOUBLE_EQ(axis_place(&scale, 10), 0);
    EXPECT_DOUBLE_EQ(axis_place(&scale, 1000), 0.5);
    EXPECT_DOUBLE_EQ(axis_place(&scale, 100000), 1);
    const axis mel = axis_mel(ORVAUTIL_Mels2Freq(4000));
    EXPECT_DOUBLE_EQ(axis_place(&mel, 0), 0);
    EXPECT_DOUBLE_EQ(axis_place(&mel, ORVAUTIL_Mels2Freq(1000)), 0.25);
    EXPECT_DOUBLE_EQ(axis_place(&mel, ORVAUTIL_Mels2Freq(4000)), 1);
}
