/* Axes of a picture: which value stands where, at which round values the ticks stand, and how they are
 * written. */
#ifndef PROGRAMS_AXIS_H
#define PROGRAMS_AXIS_H

#include <stdbool.h>
#include <stddef.h>

typedef enum { linearAxis, logarithmicAxis, melAxis, clockAxis, angleAxis } AxisKind;

typedef struct {
    AxisKind kind;
    double first, last; /* the values at its ends, first < last; above 0 on a logarithmic axis */
    double unit; /* what a written 1 stands for: 1000 on an axis that holds hertz and is labelled in kHz */
    const char *label;
} Axis;

enum { mostTicks = 32 }; /* the most that an axis has */

Axis axisLinear(double first, double last, const char *label);

/* From first to last hertz, written in Hz or, from 2 kHz on a linear axis, in kHz. */
Axis axisFrequency(double first, double last, bool logarithmic);

/* From 0 to last hertz, evenly in mels. */
Axis axisMel(double last);

/* From 0 to a duration, written in seconds or a part of them, and from two minutes on as a clock does. */
Axis axisTime(double seconds);

/* From -180 to 180 degrees, with ticks at parts of a right angle. */
Axis axisPhase(void);

/* Where a value stands: 0 at the first end, 1 at the last. */
double axisPlace(const Axis *scale, double value);

/* The values of the ticks, in rising order; at most is the number for which there is room. The result is
 * their number. */
int axisTicks(const Axis *scale, int most, double ticks[mostTicks]);

/* Writes a tick as text; ticks and count are what axisTicks() gave. */
void axisText(const Axis *scale, const double *ticks, int count, int tick, char *text, size_t size);

#endif
