/* A curve that is given at a few points, as text: "points=[x y; x y; x y]". */
#ifndef PROGRAMS_POINTS_H
#define PROGRAMS_POINTS_H

#include <stdbool.h>
#include <stdint.h>

enum { mostPoints = 256 };

typedef struct {
    int32_t count; /* 2 at least */
    double x[mostPoints], y[mostPoints];
} Points;

/* Reads the points. Refuses what is no matrix of two columns, fewer than two rows, more than there is room
   for, and x that do not rise from row to row. */
bool pointsRead(const char *config, Points *curve);

#endif
