#include "plot_internal.h"

#include "colormap.h"

static const double barGap = 20, barWidth = 18;

raster *plot_raster(const plot *picture, int panel)
{
    return raster_create((int) picture->areas[panel].width, (int) picture->areas[panel].height);
}

static void fill(cairo_surface_t *image, const raster *grid, double low, double high)
{
    cairo_surface_flush(image);
    unsigned char *bytes = cairo_image_surface_get_data(image);
    const int64_t stride = cairo_image_surface_get_stride(image);
    for (int row = 0; row < grid->rows; ++row) {
        const float *values = grid->values + (int64_t) row * grid->columns;
        uint32_t *colors = (uint32_t *) (void *) (bytes + (grid->rows - 1 - row) * stride);
        for (int column = 0; column < grid->columns; ++column)
            colors[column] = colormap_color((values[column] - low) / (high - low));
    }
    cairo_surface_mark_dirty(image);
}

static void draw_colors(cairo_t *cairo, const plot_area *area, const raster *grid, double low, double high)
{
    cairo_surface_t *image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, grid->columns, grid->rows);
    if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS)
        fill(image, grid, low, high);
    cairo_set_source_surface(cairo, image, area->x, area->y - grid->rows); /* passes a failure on to cairo */
    cairo_paint(cairo);
    cairo_surface_destroy(image);
}

static void draw_bar(cairo_t *cairo, const plot_area *area, double low, double high, const char *label)
{
    plot_area bar = {
        .x = area->x + area->width + barGap, .y = area->y, .width = barWidth, .height = area->height};
    bar.up = axis_linear(low, high, label);
    raster *scale = raster_create((int) bar.width, (int) bar.height);
    for (int row = 0; row < scale->rows; ++row)
        for (int column = 0; column < scale->columns; ++column)
            scale->values[row * scale->columns + column] =
                (float) (low + (high - low) * (row + 0.5) / scale->rows);
    draw_colors(cairo, &bar, scale, low, high);
    plot_axis_up(cairo, &bar, true);
    plot_frame(cairo, &bar);
    raster_destroy(scale);
}

void plot_image(plot *picture, int panel, const raster *grid, double low, double high, const char *label)
{
    draw_colors(picture->cairo, &picture->areas[panel], grid, low, high);
    draw_bar(picture->cairo, &picture->areas[panel], low, high, label);
}
