/* A number that changes over time, given as text: "1.5", or with the seconds at which each value begins,
   "1 0.5:1.5 2:0.7". */
#ifndef PROGRAMS_SCHEDULE_H
#define PROGRAMS_SCHEDULE_H

#include <stdbool.h>
#include <stdint.h>

enum { mostValues = 256 };

typedef struct {
    const char *name;   /* of the number, for the messages */
    double least, most; /* its range, both included */
    int count;          /* values; at least 1, the first from 0 seconds on */
    double seconds[mostValues];
    float values[mostValues];
} Schedule;

/* Reads the values, which blanks or commas separate. A first value without a time begins at 0; if the first
   one has a later time, initial stands before it. Refuses what is no number, values out of range, times that
   do not rise, and more values than there is room for. */
bool scheduleRead(Schedule *values, const char *text, float initial);

/* The value for a sample; *count, a number of samples from there on, is cut to those for which it holds. */
float scheduleAt(const Schedule *values, int64_t sample, double rate, int64_t *count);

#endif
