/* Pictures with axes, written as PNG: a title above one or more panels that stand one below the other.
 *
 *     Plot *picture = plotCreate(title, subtitle, 1, 400, true);
 *     plotPanel(picture, 0, axisTime(seconds), axisFrequency(0, 24000, false));
 *     Raster *levels = plotRaster(picture, 0);
 *     ...
 *     plotImage(picture, 0, levels, -90, 0, "dB");
 *     plotSave(picture, "picture.png");
 */
#ifndef PROGRAMS_PLOT_H
#define PROGRAMS_PLOT_H

#include "axis.h"
#include "raster.h"

#include <cairo.h>

enum { plotWidth = 1000, mostPanels = 6, mostCurves = 6 };

typedef struct {
    double x, y, width, height; /* where its axes cross and how far they reach, y counted downward */
    Axis across, up;
    int curves;
    const char *names[mostCurves]; /* for the legend; null for none */
} PlotArea;

typedef struct {
    cairo_surface_t *surface;
    cairo_t *cairo;
    int panels;
    PlotArea areas[mostPanels];
} Plot;

/* An empty picture, plotWidth points wide and as high as its panels need. The title may be any bytes. With
   colorBar there is room to the right of the panels. */
Plot *plotCreate(const char *title, const char *subtitle, int panels, int panelHeight, bool colorBar);

/* Gives a panel its axes. Comes before anything else is drawn in it. */
void plotPanel(Plot *picture, int panel, Axis across, Axis up);

/* A grid with one value for each point of a panel. */
Raster *plotRaster(const Plot *picture, int panel);

/* Fills a panel with the colours of a grid, from low to high, and draws the scale of these colours beside it.
 */
void plotImage(Plot *picture, int panel, const Raster *grid, double low, double high, const char *label);

/* A line through points whose x rises. Where y is not finite, the line is broken. Points that fall into one
   column of the picture are drawn as the stretch that they cover, so there may be any number. Each curve of a
   panel has a colour of its own; name is its place in the legend, or null. */
void plotCurve(Plot *picture, int panel, const double *x, const double *y, int64_t count, const char *name);

/* The same for samples at first, first + step, first + 2 step ... */
void plotSamples(Plot *picture, int panel, double first, double step, const float *samples, int64_t count,
                 const char *name);

/* Dots at single points, in a colour of their own. */
void plotPoints(Plot *picture, int panel, const double *x, const double *y, int64_t count, const char *name);

/* A dashed line across a panel at x, with its name beside it. */
void plotCursor(Plot *picture, int panel, double x, const char *name);

/* Writes the picture to a file whose name ends in .png; false, told on stderr, if that fails. */
bool plotSave(Plot *picture, const char *path);

void plotDestroy(Plot *picture);

#endif
