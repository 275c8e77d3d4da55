// The grid of a picture, and its colours.
#include "drawing/colormap.h"
#include "drawing/level_grid.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace orva;

namespace
{

constexpr float nothing = -std::numeric_limits<float>::infinity();

// Relative luminance (ITU-R BT.709 primaries, sRGB transfer): rises as the lightness does.
double luminance(uint32_t color)
{
    const auto part = [&](int shift) {
        const double x = static_cast<double>(color >> shift & 255U) / 255.0;
        return x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(16) + 0.7152 * part(8) + 0.0722 * part(0);
}

} // namespace

TEST(LevelGrid, KeepsTheGreatestValueOfEachPoint)
{
    LevelGrid grid({1, 2}, axisLinear(0, 3, ""), 1, 4);
    const float low[] = {-3, -2, -8, -9};
    const float high[] = {-7, -4, -6, -5};
    grid.add(low);
    grid.add(high);
    EXPECT_EQ(grid.points({1, 2}, 0, 1), (std::vector<float>{-2, -5}));
    EXPECT_EQ(grid.points({2, 2}, 0, 1), (std::vector<float>{-2, -4, -8, -5}));
    EXPECT_EQ(grid.points({4, 2}, 0, 0.5), (std::vector<float>{-2, -4, nothing, nothing, //
                                                               -8, -5, nothing, nothing}));
    EXPECT_EQ(grid.loudest(), -2);
    EXPECT_EQ(grid.columns(), 2);
}

// Values 0 and 2 sit on the edges and have half the room of value 1.
TEST(LevelGrid, FewValuesFillTheirStretch)
{
    LevelGrid grid({1, 4}, axisLinear(0, 2, ""), 1, 3);
    const float values[] = {1, 2, 3};
    grid.add(values);
    EXPECT_EQ(grid.points({1, 4}, 0, 1), (std::vector<float>{1, 2, 2, 3}));
}

TEST(LevelGrid, ValuesStandWhereTheAxisHasThem)
{
    const Axis up = axisMel(8000);
    LevelGrid grid({1, 1000}, up, 100, 81);
    std::vector<float> values(81, 0.0F);
    values[10] = 1;
    values[79] = 2;
    grid.add(values);
    const auto points = grid.points({1, 1000}, 0, 1);
    for (const auto &[hertz, value] : {std::pair{1000, 1}, {7900, 2}}) {
        for (const double side : {-45.0, 0.0, 25.0}) {
            const double place = axisPlace(up, hertz + side);
            EXPECT_EQ(points[static_cast<size_t>(place * 1000)], value) << hertz + side;
        }
        EXPECT_EQ(points[static_cast<size_t>(axisPlace(up, hertz - 75) * 1000)], 0);
    }
}

TEST(LevelGrid, LongSoundKeepsItsClicksWhereTheyWere)
{
    LevelGrid grid({100, 1}, axisLinear(0, 1, ""), 1, 1);
    const int64_t length = 1000000;
    for (int64_t i = 0; i < length; ++i) {
        const float level = i % 250000 == 125000 ? 1 : 0;
        grid.add({&level, 1});
    }
    const auto points = grid.points({100, 1}, 0, 1);
    for (size_t column = 0; column < 100; ++column)
        EXPECT_EQ(points[column], column % 25 == 12 ? 1 : 0) << column;
}

TEST(LevelGrid, NeighbouringColumnsLeaveNoGap)
{
    support::Random random;
    for (int round = 0; round < 200; ++round) {
        const GridSize size{static_cast<int>(random.integer(1, 50)), static_cast<int>(random.integer(1, 50))};
        const auto count = random.integer(1, 800);
        const auto bins = random.integer(1, 200);
        LevelGrid grid(size, axisLinear(0, 1, ""), bins > 1 ? 1.0 / static_cast<double>(bins - 1) : 3, bins);
        const std::vector<float> values(static_cast<size_t>(bins), 1.0F);
        for (int64_t i = 0; i < count; ++i)
            grid.add(values);
        EXPECT_EQ(grid.points(size, 0, 1),
                  std::vector<float>(static_cast<size_t>(size.columns * size.rows), 1.0F))
            << size.columns << 'x' << size.rows << " from " << count << 'x' << bins;
    }
}

TEST(LevelGrid, LeavesOutWhatLiesOutsideAndWhatIsNoNumber)
{
    LevelGrid grid({3, 2}, axisLinear(0, 3, ""), 1, 8);
    const float strange = std::numeric_limits<float>::quiet_NaN();
    const float values[] = {1, strange, strange, 2, 9, 9, 9, 9};
    grid.add(values);
    EXPECT_EQ(grid.points({3, 2}, 0, 1), (std::vector<float>{1, 1, 1, 2, 2, 2}));
    EXPECT_EQ(grid.points({3, 2}, 0, 0.9)[2], 1) << "less than half a column is missing";
    EXPECT_EQ(grid.points({3, 2}, 0, 0.3)[2], nothing);
    EXPECT_EQ(grid.points({3, 2}, 1.5, 2), std::vector<float>(6, nothing));
}

TEST(Colormap, LightnessRisesWithTheLevel)
{
    for (int i = 1; i <= 1000; ++i)
        EXPECT_GE(luminance(colormapColor(i / 1000.0)), luminance(colormapColor((i - 4) / 1000.0))) << i;
    for (int i = 1; i <= 50; ++i)
        EXPECT_GT(luminance(colormapColor(i / 50.0)), luminance(colormapColor((i - 1) / 50.0))) << i;
}

TEST(Colormap, EndsAreBlackAndPaleYellow)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double most = std::numeric_limits<double>::infinity();
    for (const double level : {0.0, -1.0, -most, none})
        EXPECT_EQ(colormapColor(level), 0x000004U) << level;
    for (const double level : {1.0, 1.5, 1e300, most})
        EXPECT_EQ(colormapColor(level), 0xfcfdbfU) << level;
}
