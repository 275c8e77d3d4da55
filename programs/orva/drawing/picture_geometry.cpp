#include "picture.h"

#include "failure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace orva
{
namespace
{

const double unitsOfCm = 150 / 2.54;
const double defaultWidth = 1000, leastWidth = 120, leastHeight = 60; // the latter of a panel
const double leftMargin = 84, rightMargin = 28, barMargin = 112, topMargin = 72, panelGap = 66,
             legendRoom = 22;
const double vectorDots = 2; // an image in an SVG or PDF has 300 dots per inch

[[noreturn]] void refuseSize(double width, double height)
{
    char text[96];
    std::snprintf(text, sizeof text, "--size is too small; this picture needs %.1fx%.1f at least",
                  std::ceil(10 * width / unitsOfCm) / 10, std::ceil(10 * height / unitsOfCm) / 10);
    failUse(text);
}

} // namespace

PictureGeometry geometryOf(const PictureFile &file, const PictureLayout &layout)
{
    const PictureOptions &options = file.options();
    const bool png = file.format() == PictureFormat::png;
    const double beside = leftMargin + (layout.colorBar ? barMargin : rightMargin);
    const double between = panelGap + (layout.legend ? legendRoom : 0);
    const double panels = std::accumulate(layout.heights.begin(), layout.heights.end(), 0.0);
    const double around = topMargin + between * static_cast<double>(layout.heights.size());
    PictureGeometry all{defaultWidth, around + panels, png ? options.dotsPerInch / 150.0 : vectorDots, {}};
    if (options.widthCm > 0) {
        all.width = std::floor(options.widthCm * unitsOfCm + 0.5);
        all.height = std::floor(options.heightCm * unitsOfCm + 0.5);
    }
    const double larger = (all.height - around) / panels;
    double y = topMargin;
    for (const double height : layout.heights) {
        PictureArea area;
        area.x = leftMargin;
        area.width = all.width - beside;
        area.height = std::floor(height * larger);
        if (area.width < leastWidth || area.height < leastHeight)
            refuseSize(beside + leastWidth,
                       around + panels * leastHeight / *std::ranges::min_element(layout.heights));
        y += area.height + (layout.legend ? legendRoom : 0);
        area.y = y;
        y += panelGap;
        all.areas.push_back(area);
    }
    return all;
}

GridSize gridSizeOf(const PictureFile &file, const PictureLayout &layout, size_t panel)
{
    const PictureGeometry all = geometryOf(file, layout);
    const PictureArea &area = all.areas.at(panel);
    return {static_cast<int>(area.width * all.dots + 0.5), static_cast<int>(area.height * all.dots + 0.5)};
}

} // namespace orva
