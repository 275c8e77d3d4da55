/* What the parts of the plot share. */
#ifndef PROGRAMS_PLOT_INTERNAL_H
#define PROGRAMS_PLOT_INTERNAL_H

#include "plot.h"

static const double plotInk = 0.13; /* the grey of frames, ticks and letters */

/* The axis below an area, with its grid lines. */
void plotAxisAcross(cairo_t *cairo, const PlotArea *area);

/* The axis to the left of an area, with its grid lines; or the one to the right of it, without. */
void plotAxisUp(cairo_t *cairo, const PlotArea *area, bool right);

void plotFrame(cairo_t *cairo, const PlotArea *area);

/* The names of an area's curves, in a row above its right end, where no curve runs. */
void plotLegend(cairo_t *cairo, const PlotArea *area);

#endif
