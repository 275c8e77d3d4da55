/* What a filter does to each frequency, told from what it answers to a single 1 among zeros. */
#ifndef PROGRAMS_RESPONSE_H
#define PROGRAMS_RESPONSE_H

#include <stdbool.h>

enum { responseSamples = 65536, responseBins = responseSamples / 2 + 1 };

/* Bin k is the frequency k / responseSamples of the sampling rate. */
typedef struct {
    float gain[responseBins];  /* dB */
    float phase[responseBins]; /* degrees; not a number where it turns over from -180 to 180, and so far
                                   below the greatest gain that rounding decides it */
    int greatest;              /* the bin of the greatest gain */
} Response;

/* Transforms an answer of responseSamples samples. Refuses one that is not finite. */
bool responseMeasure(const float *answer, Response *measured);

#endif
