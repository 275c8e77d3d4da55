// Levels over time for a panel of a picture, column after column, as fine as the panel and no finer: what falls on one
// point is kept as its maximum. So a tone keeps its level and a click stays visible however long the sound, of which the
// length need not be known, and memory depends on the picture alone.
#pragma once

#include "axis.h"

#include <cstdint>
#include <span>
#include <vector>

namespace orva
{

// A stretch of points; one that is narrower than a point counts for the one in which it begins.
struct PointSpan {
    int first, end;
};

// The points that a stretch from first to last covers, 0 and 1 being the edges of `count` points. Where one stretch ends,
// the next begins, so that no point stays empty.
PointSpan coveredPoints(double first, double last, int count);

// Points of a panel.
struct GridSize {
    int columns = 1, rows = 1;
};

class LevelGrid
{
public:
    // For a panel of this size whose vertical axis is `up`. Value i of each column stands at i * step on that axis and
    // speaks for half a step to either side.
    LevelGrid(GridSize size, const Axis &up, double step, int64_t valuesOfColumn);

    // Takes in the next column. Columns follow each other evenly.
    void add(std::span<const float> levels);

    int64_t columns() const
    {
        return total;
    }

    // The greatest level of all; -infinity before there is any.
    float loudest() const;

    // The levels as points, row by row from below. The columns stretch from left to right, 0 and 1 being the edges of the
    // result; the last one goes on to the right edge where less than half a column is missing.
    std::vector<float> points(GridSize size, double left, double right) const;

private:
    void merge();

    int rows;
    size_t room;                  // stretches
    std::vector<PointSpan> spans; // of each value of a column
    std::vector<float> values;    // of each stretch, from below
    int doublings = 0;            // a stretch is 2 to this many columns
    int64_t total = 0;
};

} // namespace orva
