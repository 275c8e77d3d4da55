/* A sound sent through a process that works on one channel at a time, block by block. */
#ifndef PROGRAMS_BLOCKS_H
#define PROGRAMS_BLOCKS_H

#include "sound.h"

typedef struct {
    int channel;    /* 0 for the first */
    int64_t start;  /* the frame with which it begins */
    float *samples; /* of this channel alone; to be turned, in place, into what comes out */
    float *state;   /* the channel's own room, zeros at its first block */
} Block;

typedef struct {
    int32_t length; /* frames in a block; the last one is filled up with zeros */
    int64_t delay;  /* frames by which what comes out lies after what goes in */
    int64_t state;  /* floats that a channel needs from one block to the next */
    void (*run)(void *context, Block *one);
    void *context;
} BlockProcess;

/* Sends all of input through and writes as many frames as it has: zeros after its end bring out the last of
   the sound, and the first delay frames are left out. */
bool blocksRun(Sound *input, SoundOutput *output, const BlockProcess *process);

#endif
