#include "raster.h"

#include "memory.h"

#include <math.h>
#include <stdlib.h>

Raster *rasterCreate(int columns, int rows)
{
    Raster *grid = allocate(1, sizeof *grid);
    *grid = (Raster){columns, rows, allocate((size_t) columns * (size_t) rows, sizeof(float))};
    for (int64_t i = 0; i < (int64_t) columns * rows; ++i)
        grid->values[i] = -INFINITY;
    return grid;
}

/* The points that a stretch from first to last covers, 0 and 1 being the edges of count points. Where one
   stretch ends, the next begins, so no point stays empty; a stretch narrower than a point counts for the one
   in which it begins. */
typedef struct {
    int first, end;
} Span;

static Span covered(double first, double last, int count)
{
    const int begin = first > 0.0 ? (first < 1.0 ? (int) (first * count) : count - 1) : 0;
    const int end = last > 0.0 ? (last < 1.0 ? (int) (last * count) : count) : 0;
    return (Span){begin, end > begin ? end : begin + 1};
}

void rasterAdd(Raster *grid, double left, double right, const float *values, int64_t count)
{
    const Span columns = covered(left, right, grid->columns);
    const double pitch = count > 1 ? 1.0 / (double) (count - 1) : 2.0; /* a single one fills it all */
    for (int64_t i = 0; i < count; ++i) {
        const Span rows = covered(((double) i - 0.5) * pitch, ((double) i + 0.5) * pitch, grid->rows);
        for (int row = rows.first; row < rows.end; ++row)
            for (int column = columns.first; column < columns.end; ++column) {
                float *point = &grid->values[(int64_t) row * grid->columns + column];
                if (values[i] > *point)
                    *point = values[i];
            }
    }
}

float rasterMax(const Raster *grid)
{
    float most = -INFINITY;
    for (int64_t i = 0; i < (int64_t) grid->columns * grid->rows; ++i)
        if (grid->values[i] > most)
            most = grid->values[i];
    return most;
}

void rasterDestroy(Raster *grid)
{
    free(grid->values);
    free(grid);
}
