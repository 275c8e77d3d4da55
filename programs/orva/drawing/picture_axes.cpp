#include "picture_parts.h"

#include "lettering.h"

#include <algorithm>
#include <cmath>

namespace orva
{
namespace
{

const double tickLength = 6;
const double acrossPerTick = 88, upPerTick = 30; // room that a tick and its text take
const double gridGrey = 0.88;

void line(cairo_t *cairo, double x0, double y0, double x1, double y1, double grey)
{
    cairo_set_source_rgb(cairo, grey, grey, grey);
    cairo_set_line_width(cairo, 1);
    cairo_move_to(cairo, x0, y0);
    cairo_line_to(cairo, x1, y1);
    cairo_stroke(cairo);
}

// The middle of the point on which a place falls, 0 and 1 being the ends: a line through it is one point wide and sharp.
double middle(double length, double place)
{
    return std::min(std::floor(place * length), std::floor(length) - 1) + 0.5;
}

} // namespace

void drawAxisAcross(cairo_t *cairo, const PictureArea &area)
{
    const auto ticks = axisTicks(area.across, static_cast<int>(area.width / acrossPerTick));
    for (size_t i = 0; i < ticks.size(); ++i) {
        const double x = area.x + middle(area.width, axisPlace(area.across, ticks[i]));
        line(cairo, x, area.y, x, area.y - area.height, gridGrey);
        line(cairo, x, area.y, x, area.y + tickLength, pictureInk);
        letter(cairo, {.size = 15, .anchor = 0.5}, x, area.y + tickLength + 17,
               axisText(area.across, ticks, i));
    }
    letter(cairo, {.size = 16, .anchor = 0.5}, area.x + area.width / 2, area.y + 48, area.across.label);
}

void drawAxisUp(cairo_t *cairo, const PictureArea &area, bool right)
{
    const double edge = right ? area.x + area.width : area.x;
    const double outward = right ? 1 : -1;
    const auto ticks = axisTicks(area.up, static_cast<int>(area.height / upPerTick));
    for (size_t i = 0; i < ticks.size(); ++i) {
        const double y = area.y - middle(area.height, axisPlace(area.up, ticks[i]));
        if (!right)
            line(cairo, area.x, y, area.x + area.width, y, gridGrey);
        line(cairo, edge, y, edge + outward * tickLength, y, pictureInk);
        letter(cairo, {.size = 15, .anchor = right ? 0.0 : 1.0}, edge + outward * (tickLength + 4), y + 5,
               axisText(area.up, ticks, i));
    }
    letter(cairo, {.size = 16, .anchor = 0.5, .upright = true}, edge + (right ? 68 : -60),
           area.y - area.height / 2, area.up.label);
}

void drawFrame(cairo_t *cairo, const PictureArea &area)
{
    cairo_set_source_rgb(cairo, pictureInk, pictureInk, pictureInk);
    cairo_set_line_width(cairo, 1);
    cairo_rectangle(cairo, area.x - 0.5, area.y - area.height - 0.5, area.width + 1, area.height + 1);
    cairo_stroke(cairo);
}

} // namespace orva
