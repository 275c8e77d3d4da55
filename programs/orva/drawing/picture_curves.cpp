#include "picture_parts.h"

#include "lettering.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orva
{
namespace
{

// Colours that the colour-blind tell apart: M. Okabe and K. Ito, "Color Universal Design" (2008).
const double colors[][3] = {{0.00, 0.45, 0.70}, {0.84, 0.37, 0.00}, {0.00, 0.62, 0.45},
                            {0.80, 0.47, 0.65}, {0.90, 0.62, 0.00}, {0.34, 0.71, 0.91}};
const size_t colorCount = sizeof colors / sizeof *colors;
const double curveWidth = 1.6;

void useColor(cairo_t *cairo, size_t curve)
{
    const double *color = colors[curve % colorCount];
    cairo_set_source_rgb(cairo, color[0], color[1], color[2]);
}

// Cairo's coordinates end at 2^23, and a place far outside the panel is as good as any other there.
double across(const PictureArea &area, double x)
{
    return area.x + area.width * std::clamp(axisPlace(area.across, x), -2.0, 3.0);
}

double downward(const PictureArea &area, double y)
{
    return area.y - area.height * std::clamp(axisPlace(area.up, y), -2.0, 3.0);
}

// Draws a line point by point, gathering those that fall into one column.
struct Pen {
    cairo_t *cairo;
    const PictureArea &area;
    double dots;       // columns of a unit
    bool down = false; // there is a point to draw on from
    int64_t count = 0; // points gathered in the column
    double column = 0, x = 0, first = 0, last = 0, least = 0, most = 0;

    void flush()
    {
        if (count == 0)
            return;
        if (down)
            cairo_line_to(cairo, x, first);
        else
            cairo_move_to(cairo, x, first);
        if (count > 1) {
            cairo_line_to(cairo, x, least);
            cairo_line_to(cairo, x, most);
            cairo_line_to(cairo, x, last);
        }
        down = true;
        count = 0;
    }

    void point(double atX, double atY)
    {
        if (!std::isfinite(atY)) {
            flush();
            down = false;
            return;
        }
        const double right = across(area, atX);
        const double low = downward(area, atY);
        if (count > 0 && std::floor(right * dots) != column)
            flush();
        if (count == 0) {
            column = std::floor(right * dots);
            x = right;
            first = least = most = low;
        }
        least = std::min(least, low);
        most = std::max(most, low);
        last = low;
        ++count;
    }
};

void drawMark(cairo_t *cairo, double x, double y, Mark mark)
{
    const double radius = mark == Mark::dot ? 4 : 6;
    cairo_new_path(cairo);
    if (mark == Mark::cross) {
        cairo_move_to(cairo, x - radius, y - radius);
        cairo_line_to(cairo, x + radius, y + radius);
        cairo_move_to(cairo, x - radius, y + radius);
        cairo_line_to(cairo, x + radius, y - radius);
    } else {
        cairo_arc(cairo, x, y, radius, 0, 2 * std::numbers::pi);
    }
    if (mark == Mark::dot)
        cairo_fill(cairo);
    else
        cairo_stroke(cairo);
}

} // namespace

// Takes the next colour of a panel, and keeps to its inside until cairo_restore().
PictureArea &Picture::beginCurve(size_t panel, const CurveKey &key)
{
    PictureArea &area = geometry.areas.at(panel);
    cairo_save(cairo);
    cairo_rectangle(cairo, area.x, area.y - area.height, area.width, area.height);
    cairo_clip(cairo);
    useColor(cairo, area.curves.size());
    cairo_set_line_width(cairo, curveWidth);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    area.curves.push_back(key);
    return area;
}

void Picture::curve(size_t panel, std::span<const double> x, std::span<const double> y,
                    const std::string &name)
{
    Pen pen{cairo, beginCurve(panel, {name, {}}), geometry.dots};
    for (size_t i = 0; i < std::min(x.size(), y.size()); ++i)
        pen.point(x[i], y[i]);
    pen.flush();
    cairo_stroke(cairo);
    cairo_restore(cairo);
}

void Picture::samples(size_t panel, double first, double step, std::span<const float> y,
                      const std::string &name)
{
    Pen pen{cairo, beginCurve(panel, {name, {}}), geometry.dots};
    for (size_t i = 0; i < y.size(); ++i)
        pen.point(first + static_cast<double>(i) * step, static_cast<double>(y[i]));
    pen.flush();
    cairo_stroke(cairo);
    cairo_restore(cairo);
}

void Picture::points(size_t panel, std::span<const double> x, std::span<const double> y, Mark mark,
                     const std::string &name)
{
    const PictureArea &area = beginCurve(panel, {name, mark});
    for (size_t i = 0; i < std::min(x.size(), y.size()); ++i)
        if (std::isfinite(x[i]) && std::isfinite(y[i]))
            drawMark(cairo, across(area, x[i]), downward(area, y[i]), mark);
    cairo_restore(cairo);
}

void Picture::circle(size_t panel, double radius)
{
    const PictureArea &area = geometry.areas.at(panel);
    const double x = across(area, 0);
    const double y = downward(area, 0);
    cairo_save(cairo);
    cairo_rectangle(cairo, area.x, area.y - area.height, area.width, area.height);
    cairo_clip(cairo);
    cairo_save(cairo);
    cairo_translate(cairo, x, y);
    cairo_scale(cairo, across(area, radius) - x, y - downward(area, radius));
    cairo_arc(cairo, 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_move_to(cairo, -1, 0);
    cairo_line_to(cairo, 1, 0);
    cairo_move_to(cairo, 0, -1);
    cairo_line_to(cairo, 0, 1);
    cairo_restore(cairo); // the line is as wide everywhere
    cairo_set_source_rgb(cairo, 0.6, 0.6, 0.6);
    cairo_set_line_width(cairo, 1);
    cairo_stroke(cairo);
    cairo_restore(cairo);
}

void Picture::cursor(size_t panel, double x, const std::string &name)
{
    const PictureArea &area = geometry.areas.at(panel);
    const double dashes[] = {6, 4};
    const double at = across(area, x);
    cairo_save(cairo);
    cairo_set_source_rgb(cairo, pictureInk, pictureInk, pictureInk);
    cairo_set_line_width(cairo, curveWidth);
    cairo_set_dash(cairo, dashes, 2, 0);
    cairo_move_to(cairo, at, area.y);
    cairo_line_to(cairo, at, area.y - area.height);
    cairo_stroke(cairo);
    const Lettering letters{.size = 14};
    const double room = letteredWidth(cairo, letters, name) + 8;
    const double left = at < area.x + area.width / 2 ? at + 4 : at - 4 - room; // the side that has more room
    cairo_set_source_rgba(cairo, 1, 1, 1, 0.85);
    cairo_rectangle(cairo, left, area.y - area.height + 4, room, 20);
    cairo_fill(cairo);
    cairo_set_source_rgb(cairo, pictureInk, pictureInk, pictureInk);
    letter(cairo, letters, left + 4, area.y - area.height + 19, name);
    cairo_restore(cairo);
}

void drawLegend(cairo_t *cairo, const PictureArea &area)
{
    const Lettering letters{.size = 15};
    const double sample = 26;
    const double gap = 8;
    const double y = area.y - area.height - 10;
    double x = area.x + area.width;
    for (size_t i = area.curves.size(); i-- > 0;) {
        const auto &[name, mark] = area.curves[i];
        if (name.empty())
            continue;
        x -= letteredWidth(cairo, letters, name);
        cairo_set_source_rgb(cairo, pictureInk, pictureInk, pictureInk);
        letter(cairo, letters, x, y, name);
        x -= gap + sample;
        useColor(cairo, i);
        if (mark) {
            cairo_set_line_width(cairo, curveWidth);
            drawMark(cairo, x + sample / 2, y - 5, *mark);
        } else {
            cairo_set_line_width(cairo, 3);
            cairo_move_to(cairo, x, y - 5);
            cairo_line_to(cairo, x + sample, y - 5);
            cairo_stroke(cairo);
        }
        x -= 2 * gap;
    }
}

} // namespace orva
