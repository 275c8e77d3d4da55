/* A picture of two spectrograms, one below the other: a sound before and after something was done to it. */
#ifndef PROGRAMS_COMPARISON_H
#define PROGRAMS_COMPARISON_H

#include "plot.h"

typedef struct {
    Plot *picture;
    Raster *before, *after; /* to be filled with levels in dB */
} Comparison;

/* Both panels reach over these seconds and from 0 to top hertz. */
Comparison comparisonBegin(const char *title, const char *subtitle, double seconds, double top);

/* Draws what the two were filled with, from -range to 0 dB, under a label each, and writes the picture. */
bool comparisonSave(Comparison *both, double range, const char *before, const char *after, const char *path);

void comparisonDestroy(Comparison *both);

#endif
