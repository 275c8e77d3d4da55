/* Pictures with axes, written as PNG: a title above one or more panels that stand one below the other.
 *
 *     plot *picture = plot_create(title, subtitle, 1, 400, true);
 *     plot_panel(picture, 0, axis_time(seconds), axis_frequency(0, 24000, false));
 *     raster *levels = plot_raster(picture, 0);
 *     ...
 *     plot_image(picture, 0, levels, -90, 0, "dB");
 *     plot_save(picture, "picture.png");
 */
#ifndef PROGRAMS_PLOT_H
#define PROGRAMS_PLOT_H

#include "axis.h"
#include "raster.h"

#include <cairo.h>

enum { PLOT_WIDTH = 1000, PLOT_PANELS = 6, PLOT_CURVES = 6 };

typedef struct {
    double x, y, width, height; /* where its axes cross and how far they reach, y counted downward */
    axis across, up;
    int curves;
    const char *names[PLOT_CURVES]; /* for the legend; null for none */
} plot_area;

typedef struct {
    cairo_surface_t *surface;
    cairo_t *cairo;
    int panels;
    plot_area areas[PLOT_PANELS];
} plot;

/* An empty picture, PLOT_WIDTH points wide and as high as its panels need. The title may be any bytes. With
   colorBar there is room to the right of the panels. */
plot *plot_create(const char *title, const char *subtitle, int panels, int panelHeight, bool colorBar);

/* Gives a panel its axes. Comes before anything else is drawn in it. */
void plot_panel(plot *picture, int panel, axis across, axis up);

/* A grid with one value for each point of a panel. */
raster *plot_raster(const plot *picture, int panel);

/* Fills a panel with the colours of a grid, from low to high, and draws the scale of these colours beside it.
 */
void plot_image(plot *picture, int panel, const raster *grid, double low, double high, const char *label);

/* A line through points whose x rises. Where y is not finite, the line is broken. Points that fall into one
   column of the picture are drawn as the stretch that they cover, so there may be any number. Each curve of a
   panel has a colour of its own; name is its place in the legend, or null. */
void plot_curve(plot *picture, int panel, const double *x, const double *y, int64_t count, const char *name);

/* The same for samples at first, first + step, first + 2 step ... */
void plot_samples(plot *picture, int panel, double first, double step, const float *samples, int64_t count,
                  const char *name);

/* Dots at single points, in a colour of their own. */
void plot_points(plot *picture, int panel, const double *x, const double *y, int64_t count, const char *name);

/* A dashed line across a panel at x, with its name beside it. */
void plot_cursor(plot *picture, int panel, double x, const char *name);

/* Writes the picture to a file whose name ends in .png; false, told on stderr, if that fails. */
bool plot_save(plot *picture, const char *path);

void plot_destroy(plot *picture);

#endif
