/* The library's resampler over all channels of a sound. */
#ifndef PROGRAMS_CONVERSION_H
#define PROGRAMS_CONVERSION_H

#include "sound.h"

#include <orva/ORVAresample.h>

typedef struct {
    int channels, from, to; /* from and to are rates */
    int64_t total;          /* frames that the result has: as long as the sound, rounded up */
    ORVA_RESAMPLER **each;  /* one a channel; all give the same number of frames */
} Conversion;

/* Makes the converters. What the library has against the rates or the configuration is told on stderr, and
   then the result is false. */
bool conversionBegin(Conversion *c, const Sound *input, int rate, const char *config);

/* Sends the sound through, block by block, and after it as much of the filter's tail as belongs to it. */
bool conversionRun(const Conversion *c, Sound *input, SoundOutput *output);

/* All zero is one that was not begun. */
void conversionEnd(Conversion *c);

/* The whole sound at another rate, to be read like any other; it stands in a file without a name, gone at its
   close. Null, told on stderr, where it cannot be had. */
Sound *conversionOf(Sound *input, int rate);

#endif
