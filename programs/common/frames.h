/* Overlapping frames of one channel of a sound file. Frame k is centred on sample k * hop, so that frame k
   speaks for the hop around that sample and the first and the last sample of the file are heard as well as
   any other; zeros stand for what lies outside the file. */
#ifndef PROGRAMS_FRAMES_H
#define PROGRAMS_FRAMES_H

#include "sound.h"

typedef struct {
    Sound *input;
    int channel;
    int32_t size, hop;
    int64_t count;  /* frames in all: ceil(length / hop) */
    int64_t next;   /* the number of the frame that comes next */
    float *samples; /* the present frame, size samples */
} Frames;

/* Reads input, which is at its start, by frames of size samples. */
Frames framesBegin(Sound *input, int channel, int32_t size, int32_t hop);

/* Writes the next frame, size samples; false after the last. */
bool framesNext(Frames *reader, float *frame);

/* Where the stretch begins and ends for which the frame just read speaks, 0 and 1 being the ends of the file:
   half a hop to either side, and for the last frame all that is left. */
double framesLeft(const Frames *reader);
double framesRight(const Frames *reader);

void framesEnd(Frames *reader);

#endif
