/* What the parts of the plot share. */
#ifndef PROGRAMS_PLOT_INTERNAL_H
#define PROGRAMS_PLOT_INTERNAL_H

#include "plot.h"

static const double plotInk = 0.13; /* the grey of frames, ticks and letters */

/* The axis below an area, with its grid lines. */
void plot_axis_across(cairo_t *cairo, const plot_area *area);

/* The axis to the left of an area, with its grid lines; or the one to the right of it, without. */
void plot_axis_up(cairo_t *cairo, const plot_area *area, bool right);

void plot_frame(cairo_t *cairo, const plot_area *area);

/* The names of an area's curves, in a row above its right end, where no curve runs. */
void plot_legend(cairo_t *cairo, const plot_area *area);

#endif
