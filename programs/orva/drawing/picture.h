// Pictures with axes: a title above one or more panels that stand one below the other.
//
//     PictureFile file(options.picture);        // early, for it refuses what cannot be written
//     ...
//     Picture picture(file, {.heights = {400}, .colorBar = true}, title, subtitle);
//     picture.panel(0, axisTime(0, seconds), axisFrequency(0, rate / 2, false));
//     picture.image(0, levels, -hop / 2, hop, -90, 0, "Level (dB re full-scale sine)");
//     picture.save();
//
// Lengths are in units of 1/150 inch, so that a PNG of 150 dots per inch has a dot for each.
#pragma once

#include "axis.h"
#include "level_grid.h"
#include "picture_file.h"

#include <cairo.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orva
{

struct PictureLayout {
    std::vector<double> heights{400}; // of the panels, from above; a --size makes them all larger or smaller
    bool colorBar = false;            // leaves room for scales of colours, to the right of the panels
    bool legend = false;              // leaves room for the names of curves, above each panel
};

enum class Mark { dot, ring, cross };

struct CurveKey {
    std::string name; // for the legend; empty for none
    std::optional<Mark> mark;
};

struct PictureArea {
    double x = 0, y = 0, width = 0,
           height = 0; // where its axes cross and how far they reach, y counted downward
    Axis across, up;
    std::vector<CurveKey> curves;
};

// Where everything stands.
struct PictureGeometry {
    double width = 0, height = 0;
    double dots = 1; // of an image, a unit
    std::vector<PictureArea> areas;
};

// Refuses, as used wrongly, a size that is too small for the layout.
PictureGeometry geometryOf(const PictureFile &file, const PictureLayout &layout);

// The points of a panel, for a LevelGrid.
GridSize gridSizeOf(const PictureFile &file, const PictureLayout &layout, size_t panel = 0);

class Picture
{
public:
    // The title and the subtitle may be any bytes.
    Picture(PictureFile &file, const PictureLayout &layout, const std::string &title,
            const std::string &subtitle);
    ~Picture();
    Picture(const Picture &) = delete;
    Picture &operator=(const Picture &) = delete;

    // Gives a panel its axes. Comes before anything else is drawn in it.
    void panel(size_t panel, const Axis &across, const Axis &up);

    // Fills a panel with the colours of levels from low to high, and draws the scale of these colours beside it. The
    // columns follow each other along the horizontal axis, `step` wide each, the first of them from `first` on.
    void image(size_t panel, const LevelGrid &grid, double first, double step, double low, double high,
               const std::string &label);

    // A line through points whose x rises. Where y is not finite, the line is broken. Points that fall into one column of
    // the picture are drawn as the stretch that they cover, so there may be any number. Each curve of a panel has a colour
    // of its own; the name is for the legend.
    void curve(size_t panel, std::span<const double> x, std::span<const double> y,
               const std::string &name = {});

    // The same for samples at first, first + step, first + 2 step ...
    void samples(size_t panel, double first, double step, std::span<const float> y,
                 const std::string &name = {});

    // Marks at single points, in a colour of their own.
    void points(size_t panel, std::span<const double> x, std::span<const double> y, Mark mark,
                const std::string &name = {});

    // A thin grey circle around (0, 0), as its axes show it, with the lines through its middle.
    void circle(size_t panel, double radius);

    // A dashed line across a panel at x, with its name beside it.
    void cursor(size_t panel, double x, const std::string &name);

    // Writes the picture; the file appears when it is complete.
    void save();

private:
    void drawColors(const PictureArea &area, std::span<const float> levels, GridSize size, double low,
                    double high);
    void drawBar(const PictureArea &area, double low, double high, const std::string &label);
    PictureArea &beginCurve(size_t panel, const CurveKey &key);

    PictureFile &file;
    PictureGeometry geometry;
    std::string bytes; // of the finished file
    cairo_surface_t *surface = nullptr;
    cairo_t *cairo = nullptr;
};

} // namespace orva
