// The grid of a picture, and its colours.
#include "support/random.h"

extern "C" {
#include "common/colormap.h"
#include "common/raster.h"
}

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace
{

constexpr float nothing = -std::numeric_limits<float>::infinity();

std::vector<float> valuesOf(const Raster *grid)
{
    return {grid->values, grid->values + ptrdiff_t{grid->columns} * grid->rows};
}

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

TEST(Raster, KeepsTheGreatestValueOfEachPoint)
{
    Raster *grid = rasterCreate(2, 2);
    EXPECT_EQ(valuesOf(grid), (std::vector<float>{nothing, nothing, nothing, nothing}));
    const float low[] = {-3, -2, -8, -9};
    rasterAdd(grid, 0.0, 0.1, low, 4); // 0.1 of a column of half the width: a part of the first
    EXPECT_EQ(valuesOf(grid), (std::vector<float>{-2, nothing, -8, nothing}));
    const float high[] = {-7, -4, -6, -5};
    rasterAdd(grid, 0.1, 0.2, high, 4);
    EXPECT_EQ(valuesOf(grid), (std::vector<float>{-2, nothing, -5, nothing}));
    rasterAdd(grid, 0.5, 1.0, high, 4);
    EXPECT_EQ(valuesOf(grid), (std::vector<float>{-2, -4, -5, -5}));
    EXPECT_EQ(rasterMax(grid), -2);
    rasterDestroy(grid);
}

// Bins 0 and 2 sit on the edges and have half the room of bin 1.
TEST(Raster, FewValuesFillTheirStretch)
{
    Raster *grid = rasterCreate(1, 4);
    const float values[] = {1, 2, 3};
    rasterAdd(grid, 0, 1, values, 3);
    EXPECT_EQ(valuesOf(grid), (std::vector<float>{1, 2, 2, 3}));
    rasterDestroy(grid);
}

TEST(Raster, NeighbouringColumnsLeaveNoGap)
{
    support::Random random;
    for (int round = 0; round < 200; ++round) {
        const auto columns = static_cast<int>(random.integer(1, 50));
        const auto rows = static_cast<int>(random.integer(1, 50));
        const auto count = random.integer(1, 200);
        const auto bins = static_cast<size_t>(random.integer(1, 200));
        Raster *grid = rasterCreate(columns, rows);
        const std::vector<float> values(bins, 1.0F);
        for (int64_t i = 0; i < count; ++i) {
            rasterAdd(grid, static_cast<double>(i) / static_cast<double>(count),
                      static_cast<double>(i + 1) / static_cast<double>(count), values.data(),
                      static_cast<int64_t>(bins));
        }
        EXPECT_EQ(valuesOf(grid), std::vector<float>(static_cast<size_t>(columns * rows), 1.0F))
            << columns << 'x' << rows << " from " << count << 'x' << bins;
        rasterDestroy(grid);
    }
}

TEST(Raster, WhatLiesOutsideIsKeptAtTheEdge)
{
    Raster *grid = rasterCreate(3, 1);
    const float first = 1, last = 2, strange = std::numeric_limits<float>::quiet_NaN();
    rasterAdd(grid, -5, -1, &first, 1);
    rasterAdd(grid, 1, 1e300, &last, 1);
    rasterAdd(grid, 0.4, 0.6, &strange, 1);
    EXPECT_EQ(valuesOf(grid), (std::vector<float>{1, nothing, 2}));
    rasterDestroy(grid);
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
