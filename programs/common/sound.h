/* Sound files: any that libsndfile reads, as floats with full scale 1.0; and WAV files written in the
 * likeness of one. */
#ifndef PROGRAMS_SOUND_H
#define PROGRAMS_SOUND_H

#include <sndfile.h>
#include <stdbool.h>
#include <stdint.h>

enum { SOUND_BLOCK = 4096 };

/* A file being read. In sound files, a frame is one sample of every channel. */
typedef struct {
    const char *path;
    SNDFILE *file;
    SF_INFO info;      /* samplerate, channels */
    int64_t length;    /* frames, at least 1 */
    int64_t position;  /* frames read so far */
    int64_t notFinite; /* samples read as 0 because they were infinite or not a number */
    bool endedEarly;   /* fewer frames could be read than the file announces */
    float *block;      /* SOUND_BLOCK frames, where the channels are taken apart */
} sound;

/* Opens a file. Refuses, with null, what is missing, no sound, or without a single sample. */
sound *sound_open(const char *path);

/* Refuses a channel, 1 for the first, that the file does not have. */
bool sound_has_channel(const sound *input, int channel);

/* Reads on: count samples of one channel, 1 for the first; or, with channel 0, count frames with the channels
   interleaved. Where the file ends, zeros fill up the rest. The result is the number of frames that came from
   the file. */
int64_t sound_read(sound *input, int channel, float *samples, int64_t count);

/* Notes samples that were not finite, and a file that ended early. */
void sound_note_damage(const sound *input);

/* Null is none. */
void sound_close(sound *input);

/* The last part of a path. */
const char *sound_name(const char *path);

/* A WAV file being written. */
typedef struct {
    const char *path;
    char *part; /* the name until it is complete */
    SNDFILE *file;
    int channels;
} sound_output;

/* Starts a WAV file whose samples are stored as those of like are, or as floats where a WAV file cannot hold
 * those. */
sound_output *sound_create(const char *path, const sound *like, int rate, int channels);

/* Appends frames, channels interleaved; integer formats saturate. */
bool sound_write(sound_output *output, const float *samples, int64_t frames);

/* Ends the file: it appears at its path if complete is set and all of it could be written; otherwise nothing
   changes there and the result is false. Null is a file that could not be started. */
bool sound_finish(sound_output *output, bool complete);

#endif
