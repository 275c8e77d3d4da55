#include "level_grid.h"

#include <algorithm>
#include <cmath>

namespace orva
{

PointSpan coveredPoints(double first, double last, int count)
{
    const int begin = first > 0 ? (first < 1 ? static_cast<int>(first * count) : count - 1) : 0;
    const int end = last > 0 ? (last < 1 ? static_cast<int>(last * count) : count) : 0;
    return {begin, std::max(end, begin + 1)};
}

LevelGrid::LevelGrid(GridSize size, const Axis &up, double step, int64_t valuesOfColumn)
    : rows(size.rows), room(4 * static_cast<size_t>(size.columns))
{
    for (int64_t i = 0; i < valuesOfColumn; ++i) {
        const double low = std::max((static_cast<double>(i) - 0.5) * step, up.first);
        const double high = std::min((static_cast<double>(i) + 0.5) * step, up.last);
        spans.push_back(low < high ? coveredPoints(axisPlace(up, low), axisPlace(up, high), rows)
                                   : PointSpan{0, 0});
    }
}

// Stretches of twice the length.
void LevelGrid::merge()
{
    const auto height = static_cast<size_t>(rows);
    for (size_t i = 0; i < room / 2; ++i)
        for (size_t row = 0; row < height; ++row)
            values[i * height + row] =
                std::max(values[2 * i * height + row], values[(2 * i + 1) * height + row]);
    values.resize(room / 2 * height);
    ++doublings;
}

void LevelGrid::add(std::span<const float> levels)
{
    const auto height = static_cast<size_t>(rows);
    if (static_cast<size_t>(total >> doublings) == room)
        merge();
    const auto stretch = static_cast<size_t>(total >> doublings);
    values.resize((stretch + 1) * height, -HUGE_VALF);
    float *points = &values[stretch * height];
    for (size_t i = 0; i < levels.size() && i < spans.size(); ++i)
        for (int row = spans[i].first; row < spans[i].end; ++row)
            if (levels[i] > points[row])
                points[row] = levels[i];
    ++total;
}

float LevelGrid::loudest() const
{
    return values.empty() ? -HUGE_VALF : *std::max_element(values.begin(), values.end());
}

std::vector<float> LevelGrid::points(GridSize size, double left, double right) const
{
    std::vector<float> result(static_cast<size_t>(size.columns) * static_cast<size_t>(size.rows), -HUGE_VALF);
    const double width = (right - left) / static_cast<double>(total); // of a column
    const auto place = [&](int64_t column) {
        const double edge = left + width * static_cast<double>(column);
        return column == total && edge > 1 - width * (0.5 + 1e-6) ? 1 : edge;
    };
    for (int64_t stretch = 0; stretch << doublings < total; ++stretch) {
        const double from = place(stretch << doublings);
        const double to = place(std::min((stretch + 1) << doublings, total));
        if (to <= 0 || from >= 1)
            continue;
        const PointSpan columns = coveredPoints(from, to, size.columns);
        for (int row = 0; row < size.rows; ++row) {
            const auto source = static_cast<size_t>(stretch * rows + int64_t{row} * rows / size.rows);
            float *line = &result[static_cast<size_t>(row) * static_cast<size_t>(size.columns)];
            for (int column = columns.first; column < columns.end; ++column)
                line[column] = std::max(line[column], values[source]);
        }
    }
    return result;
}

} // namespace orva
