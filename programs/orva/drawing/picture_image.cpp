#include "picture_parts.h"

#include "colormap.h"

namespace orva
{
namespace
{

const double barGap = 20, barWidth = 18;

cairo_surface_t *imageOf(std::span<const float> levels, GridSize size, double low, double high)
{
    cairo_surface_t *image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.columns, size.rows);
    if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS)
        return image; // passes the failure on to what is drawn with it
    cairo_surface_flush(image);
    unsigned char *bytes = cairo_image_surface_get_data(image);
    const int64_t stride = cairo_image_surface_get_stride(image);
    for (int row = 0; row < size.rows; ++row) {
        const float *values = &levels[static_cast<size_t>(row) * static_cast<size_t>(size.columns)];
        auto *points = reinterpret_cast<uint32_t *>(bytes + (size.rows - 1 - row) * stride);
        for (int column = 0; column < size.columns; ++column)
            points[column] = colormapColor((static_cast<double>(values[column]) - low) / (high - low));
    }
    cairo_surface_mark_dirty(image);
    return image;
}

} // namespace

void Picture::drawColors(const PictureArea &area, std::span<const float> levels, GridSize size, double low,
                         double high)
{
    cairo_surface_t *image = imageOf(levels, size, low, high);
    cairo_save(cairo);
    cairo_translate(cairo, area.x, area.y - area.height);
    cairo_scale(cairo, area.width / size.columns, area.height / size.rows);
    cairo_set_source_surface(cairo, image, 0, 0);
    cairo_pattern_set_extend(cairo_get_source(cairo), CAIRO_EXTEND_PAD);
    if (file.format() == PictureFormat::png)
        cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_NEAREST); // it has a point for each
    cairo_rectangle(cairo, 0, 0, size.columns, size.rows);
    cairo_fill(cairo);
    cairo_restore(cairo);
    cairo_surface_destroy(image);
}

void Picture::drawBar(const PictureArea &area, double low, double high, const std::string &label)
{
    PictureArea bar = area;
    bar.x += area.width + barGap;
    bar.width = barWidth;
    bar.up = axisLinear(low, high, label);
    const GridSize size{static_cast<int>(bar.width * geometry.dots + 0.5),
                        static_cast<int>(bar.height * geometry.dots + 0.5)};
    std::vector<float> levels;
    for (int row = 0; row < size.rows; ++row)
        levels.insert(levels.end(), static_cast<size_t>(size.columns),
                      static_cast<float>(low + (high - low) * (row + 0.5) / size.rows));
    drawColors(bar, levels, size, low, high);
    drawAxisUp(cairo, bar, true);
    drawFrame(cairo, bar);
}

void Picture::image(size_t panel, const LevelGrid &grid, double first, double step, double low, double high,
                    const std::string &label)
{
    const PictureArea &area = geometry.areas.at(panel);
    const GridSize size{static_cast<int>(area.width * geometry.dots + 0.5),
                        static_cast<int>(area.height * geometry.dots + 0.5)};
    const double last = first + step * static_cast<double>(grid.columns());
    drawColors(area, grid.points(size, axisPlace(area.across, first), axisPlace(area.across, last)), size,
               low, high);
    drawBar(area, low, high, label);
}

} // namespace orva
