// Axes of a picture: which value stands where, at which round values the ticks stand, and how they are written.
#pragma once

#include <string>
#include <vector>

namespace orva
{

enum class AxisKind { linear, logarithmic, mel, bark, clock, angle };

struct Axis {
    AxisKind kind = AxisKind::linear;
    double first = 0, last = 1; // the values at its ends, first < last; above 0 on a logarithmic axis
    double unit = 1; // what a written 1 stands for: 1000 on an axis that holds hertz and is labelled in kHz
    std::string label;
};

enum { mostTicks = 32 }; // the most that an axis has

Axis axisLinear(double first, double last, const std::string &label);

// From first to last hertz, written in Hz or, from 2 kHz on a linear axis, in kHz.
Axis axisFrequency(double first, double last, bool logarithmic);

// From 0 to last hertz, evenly in mels, or in Bark.
Axis axisMel(double last);
Axis axisBark(double last);

// An axis of frequency that names the channel, 0 being the first, whose panel it belongs to.
Axis axisOfChannel(Axis frequency, size_t channel);

// Seconds, written so or in a part of them, and from two minutes on as a clock does.
Axis axisTime(double first, double last);

// From -180 to 180 degrees, with ticks at parts of a right angle.
Axis axisPhase();

// Decibels: `range` of them, up to the next ten above the loudest, or up to 0 where all is silent.
Axis axisLevel(double loudest, double range, const std::string &label);

// Where a value stands: 0 at the first end, 1 at the last.
double axisPlace(const Axis &scale, double value);

// The values of the ticks, in rising order; `most` is the number for which there is room.
std::vector<double> axisTicks(const Axis &scale, int most);

// A tick as text; `ticks` is what axisTicks() gave.
std::string axisText(const Axis &scale, const std::vector<double> &ticks, size_t tick);

} // namespace orva
