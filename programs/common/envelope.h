/* The outline of a sound: the least and the greatest sample of one stretch after the other. The stretches
   double in length whenever there get to be too many, so memory stays the same however long the sound. */
#ifndef PROGRAMS_ENVELOPE_H
#define PROGRAMS_ENVELOPE_H

#include "plot.h"

#include <stdint.h>

enum { mostStretches = 4096 };

/* All zero is an empty one. */
typedef struct {
    int doublings; /* a stretch is 2 to this many frames */
    int64_t total; /* frames taken in */
    float least[mostStretches], most[mostStretches];
} Envelope;

/* Takes in frames, channels interleaved; the outline is that of all channels together. */
void envelopeAdd(Envelope *outline, const float *samples, int64_t frames, int channels);

/* Draws an outline in a panel of its own, whose axes reach to these seconds and as far as its greatest value;
   what lies after it is left out. The label is that of the vertical axis. */
void envelopeDraw(const Envelope *outline, Plot *picture, int panel, int rate, double seconds,
                  const char *label);

#endif
