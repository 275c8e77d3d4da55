// Curves, cursors and legends.
#include "picture.h"
#include "support/folder.h"

extern "C" {
#include "common/plot.h"
}

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace
{

constexpr int left = 84, right = 972, top = 72, gap = 66;
constexpr uint32_t blue = 0x0073b3, orange = 0xd65e00;

Picture drawn(int panels, const std::function<void(Plot *)> &draw)
{
    const support::Folder folder;
    Plot *picture = plotCreate("title", "subtitle", panels, 200, false);
    draw(picture);
    EXPECT_TRUE(plotSave(picture, (folder / "p.png").c_str()));
    plotDestroy(picture);
    return readPicture(folder / "p.png");
}

// The points near a colour in a rectangle.
int countOf(const Picture &picture, uint32_t color, int x0, int x1, int y0, int y1)
{
    int count = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            count += distance(picture.at(x, y), color) < 60;
    return count;
}

} // namespace

TEST(Plot, PanelsStandOneBelowTheOther)
{
    const std::vector<double> x{0, 10}, y{0.5, 0.5};
    const Picture picture = drawn(2, [&](Plot *p) {
        plotPanel(p, 0, axisLinear(0, 10, "x"), axisLinear(0, 1, "y"));
        plotPanel(p, 1, axisLinear(0, 10, "x"), axisLinear(-1, 1, "y"));
        plotCurve(p, 0, x.data(), y.data(), 2, nullptr);
        plotCurve(p, 1, x.data(), y.data(), 2, nullptr);
    });
    EXPECT_EQ(picture.width, 1000);
    EXPECT_EQ(picture.height, top + 2 * (200 + gap));
    EXPECT_GT(countOf(picture, blue, left, right, top + 98, top + 103), right - left - 4);
    EXPECT_GT(countOf(picture, blue, left, right, top + 200 + gap + 48, top + 200 + gap + 53),
              right - left - 4);
    EXPECT_EQ(countOf(picture, blue, 0, 1000, top + 110, top + 200 + gap + 40), 0);
}

TEST(Plot, LineIsBrokenWhereAValueIsNotFinite)
{
    std::vector<float> samples(1001, 0.5F);
    for (size_t i = 400; i <= 600; ++i)
        samples[i] =
            i % 2 == 0 ? std::numeric_limits<float>::quiet_NaN() : std::numeric_limits<float>::infinity();
    const Picture picture = drawn(1, [&](Plot *p) {
        plotPanel(p, 0, axisLinear(0, 1, "x"), axisLinear(0, 1, "y"));
        plotSamples(p, 0, 0, 0.001, samples.data(), 1001, nullptr);
    });
    const int middle = (left + right) / 2;
    EXPECT_GT(countOf(picture, blue, left, middle - 100, top, top + 200), 300);
    EXPECT_EQ(countOf(picture, blue, middle - 80, middle + 80, top, top + 200), 0);
    EXPECT_GT(countOf(picture, blue, middle + 100, right, top, top + 200), 300);
}

TEST(Plot, MillionPointsShowTheirWholeStretch)
{
    std::vector<float> samples(1000000);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(0.5 * std::sin(0.1 * static_cast<double>(i)));
    const Picture picture = drawn(1, [&](Plot *p) {
        plotPanel(p, 0, axisLinear(0, 1e6, "x"), axisLinear(-1, 1, "y"));
        plotSamples(p, 0, 0, 1, samples.data(), 1000000, nullptr);
    });
    EXPECT_GT(countOf(picture, blue, left + 2, right - 2, top + 52, top + 148),
              96 * (right - left - 4) * 99 / 100);
    EXPECT_EQ(countOf(picture, blue, left, right, top, top + 47), 0);
}

TEST(Plot, ValuesFarOutsideAreCutAtTheFrame)
{
    const std::vector<double> x{-1e300, 0.5, 1e300}, y{-1e300, 1e300, -1e300};
    const Picture picture = drawn(1, [&](Plot *p) {
        plotPanel(p, 0, axisLinear(0, 1, "x"), axisLinear(0, 1, "y"));
        plotCurve(p, 0, x.data(), y.data(), 3, nullptr);
    });
    EXPECT_EQ(countOf(picture, blue, 0, 1000, 0, top), 0);
    EXPECT_EQ(countOf(picture, blue, 0, left, 0, picture.height), 0);
}

TEST(Plot, LogarithmicAxisSpreadsDecadesEvenly)
{
    const std::vector<double> x{100, 100.001}, y{0, 1};
    const Picture picture = drawn(1, [&](Plot *p) {
        plotPanel(p, 0, axisFrequency(10, 1000, true), axisLinear(0, 1, "y"));
        plotCurve(p, 0, x.data(), y.data(), 2, nullptr);
    });
    const int middle = (left + right) / 2;
    EXPECT_GT(countOf(picture, blue, middle - 3, middle + 3, top, top + 200), 150);
}

TEST(Plot, LegendShowsTheCurvesThatHaveNames)
{
    const std::vector<double> x{0, 1}, y{0.1, 0.1}, z{0.2, 0.2};
    const auto draw = [&](const char *first, const char *second) {
        return drawn(1, [&](Plot *p) {
            plotPanel(p, 0, axisLinear(0, 1, "x"), axisLinear(0, 1, "y"));
            plotCurve(p, 0, x.data(), y.data(), 2, first);
            plotCurve(p, 0, x.data(), z.data(), 2, second);
        });
    };
    const int half = (left + right) / 2;
    const Picture both = draw("one", "another");
    EXPECT_GT(countOf(both, blue, half, right, top - 30, top - 2), 40);
    EXPECT_GT(countOf(both, orange, half, right, top - 30, top - 2), 40);
    const Picture second = draw(nullptr, "another");
    EXPECT_EQ(countOf(second, blue, half, right, top - 30, top - 2), 0);
    EXPECT_GT(countOf(second, orange, half, right, top - 30, top - 2), 40);
    const Picture none = draw(nullptr, nullptr);
    EXPECT_EQ(countOf(none, 0x212121, half, right, top - 30, top - 2), 0);
    EXPECT_EQ(countOf(none, orange, half, right, top - 30, top - 2), 0);
}

TEST(Plot, CursorStandsAtItsValue)
{
    const Picture picture = drawn(1, [&](Plot *p) {
        plotPanel(p, 0, axisLinear(0, 8, "x"), axisLinear(0, 1, "y"));
        plotCursor(p, 0, 1, "cursor");
    });
    const int at = left + (right - left) / 8;
    EXPECT_GT(countOf(picture, 0x212121, at - 2, at + 2, top, top + 200), 100);
    EXPECT_GT(countOf(picture, 0x212121, at + 4, at + 80, top + 4, top + 24), 30) << "its name";
}

TEST(Plot, PointsAreDotsInAColourOfTheirOwn)
{
    const std::vector<double> x{2, 6}, y{0.5, 0.25}, far{3, 4},
        away{1e30, -std::numeric_limits<double>::infinity()};
    const Picture picture = drawn(1, [&](Plot *p) {
        plotPanel(p, 0, axisLinear(0, 8, "x"), axisLinear(0, 1, "y"));
        plotPoints(p, 0, x.data(), y.data(), 2, "first");
        plotPoints(p, 0, far.data(), away.data(), 2, nullptr);
    });
    const int width = right - left;
    for (int i = 0; i < 2; ++i) {
        const int across = left + width * (i == 0 ? 2 : 6) / 8, down = top + (i == 0 ? 100 : 150);
        EXPECT_GT(countOf(picture, blue, across - 5, across + 5, down - 5, down + 5), 30);
    }
    EXPECT_LT(countOf(picture, blue, left, right, top, top + 200), 150) << "nothing between them";
    EXPECT_EQ(countOf(picture, orange, left, right, top, top + 200), 0);
    EXPECT_GT(countOf(picture, blue, left, right, top - 30, top - 2), 40) << "legend";
}
