#include "plot_internal.h"

#include "colormap.h"

static const double barGap = 20, barWidth = 18;

Raster *plotRaster(const Plot *picture, int panel)
{
    return rasterCreate((int) picture->areas[panel].width, (int) picture->areas[panel].height);
}

static void fill(cairo_surface_t *image, const Raster *grid, double low, double high)
{
    cairo_surface_flush(image);
    unsigned char *bytes = cairo_image_surface_get_data(image);
    const int64_t stride = cairo_image_surface_get_stride(image);
    for (int row = 0; row < grid->rows; ++row) {
        const float *values = grid->values + (int64_t) row * grid->columns;
        uint32_t *colors = (uint32_t *) (void *) (bytes + (grid->rows - 1 - row) * stride);
        for (int column = 0; column < grid->columns; ++column)
            colors[column] = colormapColor((values[column] - low) / (high - low));
    }
    cairo_surface_mark_dirty(image);
}

static void drawColors(cairo_t *cairo, const PlotArea *area, const Raster *grid, double low, double high)
{
    cairo_surface_t *image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, grid->columns, grid->rows);
    if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS)
        fill(image, grid, low, high);
    cairo_set_source_surface(cairo, image, area->x, area->y - grid->rows); /* passes a failure on to cairo */
    cairo_paint(cairo);
    cairo_surface_destroy(image);
}

static void drawBar(cairo_t *cairo, const PlotArea *area, double low, double high, const char *label)
{
    PlotArea bar = {
        .x = area->x + area->width + barGap, .y = area->y, .width = barWidth, .height = area->height};
    bar.up = axisLinear(low, high, label);
    Raster *scale = rasterCreate((int) bar.width, (int) bar.height);
    for (int row = 0; row < scale->rows; ++row)
        for (int column = 0; column < scale->columns; ++column)
            scale->values[row * scale->columns + column] =
                (float) (low + (high - low) * (row + 0.5) / scale->rows);
    drawColors(cairo, &bar, scale, low, high);
    plotAxisUp(cairo, &bar, true);
    plotFrame(cairo, &bar);
    rasterDestroy(scale);
}

void plotImage(Plot *picture, int panel, const Raster *grid, double low, double high, const char *label)
{
    drawColors(picture->cairo, &picture->areas[panel], grid, low, high);
    drawBar(picture->cairo, &picture->areas[panel], low, high, label);
}
