#include "axis.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orva
{
namespace
{

// The least of 1, 2 and 5 times a power of ten that is not below a width.
double roundStep(double width)
{
    const double decade = std::pow(10.0, std::floor(std::log10(width)));
    const double digit = width / decade;
    const double more = 1 + 1e-9; // what only the division made larger
    return decade * (digit <= more ? 1 : digit <= 2 * more ? 2 : digit <= 5 * more ? 5 : 10);
}

// The same in seconds, minutes and hours.
double clockStep(double width)
{
    for (const int step :
         {1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400})
        if (step >= width)
            return step;
    return 86400 * roundStep(width / 86400);
}

double angleStep(double width)
{
    return width <= 15 ? 15 : width <= 30 ? 30 : width <= 45 ? 45 : width <= 90 ? 90 : 180;
}

double evenStep(const Axis &scale, double width)
{
    if (scale.kind == AxisKind::clock)
        return clockStep(width);
    if (scale.kind == AxisKind::angle)
        return angleStep(width);
    return scale.unit * roundStep(width / scale.unit);
}

std::vector<double> evenTicks(const Axis &scale, int most)
{
    const double step = evenStep(scale, (scale.last - scale.first) / most);
    const double start = std::ceil(scale.first / step - 1e-6); // an end that is a round value has its tick
    const double end = std::floor(scale.last / step + 1e-6);
    std::vector<double> ticks;
    for (int i = 0; start + i <= end && i < mostTicks; ++i)
        ticks.push_back((start + i) * step);
    return ticks;
}

// 1, or 1, 2 and 5, times every stride-th power of ten.
std::vector<double> decadeTicks(const Axis &scale, bool ones, int stride)
{
    const int last = static_cast<int>(std::ceil(std::log10(scale.last)));
    std::vector<double> ticks;
    for (int decade = static_cast<int>(std::floor(std::log10(scale.first))); decade <= last;
         decade += stride) {
        for (const int digit : {1, 2, 5}) {
            const double value = digit * std::pow(10.0, decade);
            const double place = axisPlace(scale, value);
            if ((digit == 1 || !ones) && place > -1e-6 && place < 1 + 1e-6 && ticks.size() < mostTicks)
                ticks.push_back(value);
        }
    }
    return ticks;
}

std::vector<double> logarithmicTicks(const Axis &scale, int most)
{
    auto ticks = decadeTicks(scale, false, 1);
    if (ticks.size() < 3) // a part of a decade
        return evenTicks(scale, most);
    for (int stride = 1; static_cast<int>(ticks.size()) > most + 1; ++stride)
        ticks = decadeTicks(scale, true, stride);
    return ticks;
}

// 0, and 1, 2 and 5 times each power of ten, where there is room above the one before. As they are not even, some may
// stand closer than an even share of the room.
std::vector<double> hearingTicks(const Axis &scale, int most)
{
    std::vector<double> ticks{0};
    if (scale.last <= 1)
        return ticks;
    for (const double value : decadeTicks({AxisKind::logarithmic, 1, scale.last, 1, {}}, false, 1))
        if (static_cast<int>(ticks.size()) <= most &&
            (axisPlace(scale, value) - axisPlace(scale, ticks.back())) * most > 0.55)
            ticks.push_back(value);
    return ticks;
}

std::string clockText(double value, bool hours)
{
    const long long seconds = std::llround(value);
    const auto minutes = static_cast<int>(seconds / 60 % 60);
    const auto rest = static_cast<int>(seconds % 60);
    char text[40];
    if (hours)
        std::snprintf(text, sizeof text, "%lld:%02d:%02d", seconds / 3600, minutes, rest);
    else
        std::snprintf(text, sizeof text, "%lld:%02d", seconds / 60, rest);
    return text;
}

} // namespace

std::vector<double> axisTicks(const Axis &scale, int most)
{
    most = std::clamp(most, 1, mostTicks - 2);
    if (scale.kind == AxisKind::mel || scale.kind == AxisKind::bark)
        return hearingTicks(scale, most);
    return scale.kind == AxisKind::logarithmic ? logarithmicTicks(scale, most) : evenTicks(scale, most);
}

std::string axisText(const Axis &scale, const std::vector<double> &ticks, size_t tick)
{
    if (scale.kind == AxisKind::clock)
        return clockText(ticks[tick], scale.last >= 3600);
    const double value = std::fabs(ticks[tick]) / scale.unit;
    const double step = ticks.size() > 1 ? (ticks[1] - ticks[0]) / scale.unit : 0;
    // As many decimals as the step needs, the same on every tick.
    const int decimals = step > 0 ? -static_cast<int>(std::floor(std::log10(step) + 1e-9)) : 0;
    const bool uneven =
        scale.kind == AxisKind::logarithmic || scale.kind == AxisKind::mel || scale.kind == AxisKind::bark;
    char text[40];
    if (uneven || ticks.size() < 2 || decimals > 6 || value >= 1e6)
        std::snprintf(text, sizeof text, "%.6g", value);
    else
        std::snprintf(text, sizeof text, "%.*f", std::max(decimals, 0), value);
    return (ticks[tick] < 0 ? "\u2212" : "") + std::string(text);
}

} // namespace orva
