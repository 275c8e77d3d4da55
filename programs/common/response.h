/* What a filter does to each frequency, told from what it answers to a single 1 among zeros. */
#ifndef PROGRAMS_RESPONSE_H
#define PROGRAMS_RESPONSE_H

#include <stdbool.h>

enum { RESPONSE_SAMPLES = 65536, RESPONSE_BINS = RESPONSE_SAMPLES / 2 + 1 };

/* Bin k is the frequency k / RESPONSE_SAMPLES of the sampling rate. */
typedef struct {
    float gain[RESPONSE_BINS];  /* dB */
    float phase[RESPONSE_BINS]; /* degrees; not a number where it turns over from -180 to 180, and so far
                                   below the greatest gain that rounding decides it */
    int greatest;               /* the bin of the greatest gain */
} response;

/* Transforms an answer of RESPONSE_SAMPLES samples. Refuses one that is not finite. */
bool response_measure(const float *answer, response *measured);

#endif
