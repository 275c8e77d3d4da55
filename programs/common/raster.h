/* A grid of values, as large as its place in the picture, that takes in columns of any number at any density:
   what falls on one point of the picture is kept as its maximum. So a tone keeps its level and a click stays
   visible however long the file, and memory depends on the picture alone. */
#ifndef PROGRAMS_RASTER_H
#define PROGRAMS_RASTER_H

#include <stdint.h>

typedef struct {
    int columns, rows;
    float *values; /* row by row, the lowest value of the vertical axis first */
} Raster;

/* All values are -infinity. */
Raster *rasterCreate(int columns, int rows);

/* Takes in one column of count values that stretches from left to right, 0 and 1 being the grid's edges. The
   first and the last of the values sit on the lower and the upper edge, the others evenly between them. */
void rasterAdd(Raster *grid, double left, double right, const float *values, int64_t count);

/* The greatest value, which is the greatest of all that the grid has taken in. */
float rasterMax(const Raster *grid);

void rasterDestroy(Raster *grid);

#endif
