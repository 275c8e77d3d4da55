/* Axes of a picture: which value stands where, at which round values the ticks stand, and how they are
 * written. */
#ifndef PROGRAMS_AXIS_H
#define PROGRAMS_AXIS_H

#include <stdbool.h>
#include <stddef.h>

typedef enum { AXIS_LINEAR, AXIS_LOGARITHMIC, AXIS_MEL, AXIS_CLOCK, AXIS_ANGLE } axis_kind;

typedef struct {
    axis_kind kind;
    double first, last; /* the values at its ends, first < last; above 0 on a logarithmic axis */
    double unit; /* what a written 1 stands for: 1000 on an axis that holds hertz and is labelled in kHz */
    const char *label;
} axis;

enum { AXIS_TICKS = 32 }; /* the most that an axis has */

axis axis_linear(double first, double last, const char *label);

/* From first to last hertz, written in Hz or, from 2 kHz on a linear axis, in kHz. */
axis axis_frequency(double first, double last, bool logarithmic);

/* From 0 to last hertz, evenly in mels. */
axis axis_mel(double last);

/* From 0 to a duration, written in seconds or a part of them, and from two minutes on as a clock does. */
axis axis_time(double seconds);

/* From -180 to 180 degrees, with ticks at parts of a right angle. */
axis axis_phase(void);

/* Where a value stands: 0 at the first end, 1 at the last. */
double axis_place(const axis *scale, double value);

/* The values of the ticks, in rising order; at most is the number for which there is room. The result is
 * their number. */
int axis_ticks(const axis *scale, int most, double ticks[AXIS_TICKS]);

/* Writes a tick as text; ticks and count are what axis_ticks() gave. */
void axis_text(const axis *scale, const double *ticks, int count, int tick, char *text, size_t size);

#endif
