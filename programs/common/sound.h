/* Sound files: any that libsndfile reads, as floats with full scale 1.0; and WAV files written in the
 * likeness of one. */
#ifndef PROGRAMS_SOUND_H
#define PROGRAMS_SOUND_H

#include <sndfile.h>

#include <stdbool.h>
#include <stdint.h>

enum { blockFrames = 4096 };

/* A file being read. In sound files, a frame is one sample of every channel. */
typedef struct {
    const char *path;
    SNDFILE *file;
    SF_INFO info;      /* samplerate, channels */
    int64_t length;    /* frames, at least 1 */
    int64_t position;  /* frames read so far */
    int64_t notFinite; /* samples read as 0 because they were infinite or not a number */
    bool endedEarly;   /* fewer frames could be read than the file announces */
    float *block;      /* blockFrames frames, where the channels are taken apart */
} Sound;

/* Opens a file. Refuses, with null, what is missing, no sound, or without a single sample. */
Sound *soundOpen(const char *path);

/* Refuses a channel, 1 for the first, that the file does not have. */
bool soundHasChannel(const Sound *input, int channel);

/* Reads on: count samples of one channel, 1 for the first; or, with channel 0, count frames with the channels
   interleaved. Where the file ends, zeros fill up the rest. The result is the number of frames that came from
   the file. */
int64_t soundRead(Sound *input, int channel, float *samples, int64_t count);

/* Notes samples that were not finite, and a file that ended early. */
void soundNoteDamage(const Sound *input);

/* Null is none. */
void soundClose(Sound *input);

/* The last part of a path. */
const char *soundName(const char *path);

/* A WAV file being written. */
typedef struct {
    const char *path;
    char *part; /* the name until it is complete */
    SNDFILE *file;
    int channels;
} SoundOutput;

/* Starts a WAV file whose samples are stored as those of like are, or as floats where a WAV file cannot hold
 * those. */
SoundOutput *soundCreate(const char *path, const Sound *like, int rate, int channels);

/* Appends frames, channels interleaved; integer formats saturate. */
bool soundWrite(SoundOutput *output, const float *samples, int64_t frames);

/* Ends the file: it appears at its path if complete is set and all of it could be written; otherwise nothing
   changes there and the result is false. Null is a file that could not be started. */
bool soundFinish(SoundOutput *output, bool complete);

#endif
