#include "axis.h"

#include <orva/ORVAutil.h>

#include <cmath>

namespace orva
{
namespace
{

Axis axisOfHearing(AxisKind kind, double last, const std::string &scale)
{
    const bool kilo = last >= 2000;
    return {kind, 0, last, kilo ? 1000.0 : 1.0,
            (kilo ? "Frequency (kHz, " : "Frequency (Hz, ") + scale + ")"};
}

// The scale on which an axis is even.
double evenly(AxisKind kind, double value)
{
    switch (kind) {
    case AxisKind::logarithmic:
        return std::log(value);
    case AxisKind::mel:
        return ORVAUTIL_Freq2Mels(value);
    case AxisKind::bark:
        return value < 1 ? value * ORVAUTIL_Freq2Bark(1)
                         : ORVAUTIL_Freq2Bark(value); // it is the same below 1
    default:
        return value;
    }
}

} // namespace

Axis axisLinear(double first, double last, const std::string &label)
{
    return {AxisKind::linear, first, last, 1, label};
}

Axis axisFrequency(double first, double last, bool logarithmic)
{
    if (logarithmic)
        return {AxisKind::logarithmic, first, last, 1, "Frequency (Hz)"};
    if (last < 2000)
        return {AxisKind::linear, first, last, 1, "Frequency (Hz)"};
    return {AxisKind::linear, first, last, 1000, "Frequency (kHz)"};
}

Axis axisMel(double last)
{
    return axisOfHearing(AxisKind::mel, last, "mel");
}

Axis axisBark(double last)
{
    return axisOfHearing(AxisKind::bark, last, "Bark");
}

Axis axisOfChannel(Axis frequency, size_t channel)
{
    frequency.label.replace(0, frequency.label.find(' '), "Channel " + std::to_string(channel + 1));
    return frequency;
}

Axis axisTime(double first, double last)
{
    const bool clock = last - first >= 10; // below that, the parts of a second count
    if (clock && last >= 3600)
        return {AxisKind::clock, first, last, 1, "Time (h:min:s)"};
    if (clock && last >= 120)
        return {AxisKind::clock, first, last, 1, "Time (min:s)"};
    if (last >= 0.5)
        return {AxisKind::linear, first, last, 1, "Time (s)"};
    if (last >= 0.5e-3)
        return {AxisKind::linear, first, last, 1e-3, "Time (ms)"};
    return {AxisKind::linear, first, last, 1e-6, "Time (\u00b5s)"};
}

Axis axisPhase()
{
    return {AxisKind::angle, -180, 180, 1, "Phase (\u00b0)"};
}

Axis axisLevel(double loudest, double range, const std::string &label)
{
    const double top = std::isfinite(loudest) ? 10 * std::ceil(loudest / 10) : 0;
    return axisLinear(top - range, top, label);
}

double axisPlace(const Axis &scale, double value)
{
    const double first = evenly(scale.kind, scale.first);
    return (evenly(scale.kind, value) - first) / (evenly(scale.kind, scale.last) - first);
}

} // namespace orva
