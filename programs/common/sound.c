#include "sound.h"

#include "memory.h"
#include "messages.h"
#include "output.h"

#include <errno.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int64_t least(int64_t a, int64_t b)
{
    return a < b ? a : b;
}

/* Some encoders leave the length out of a file's head; then it is counted. */
static int64_t countFrames(Sound *input)
{
    if (input->info.frames < SF_COUNT_MAX)
        return input->info.frames;
    int64_t total = 0, got;
    while ((got = sf_readf_float(input->file, input->block, blockFrames)) > 0)
        total += got;
    return sf_seek(input->file, 0, SEEK_SET) == 0 ? total : 0;
}

/* Why a file could not be opened: the system's reason where there is one, else the library's. */
static const char *openError(const char *path)
{
    FILE *file = fopen(path, "rb");
    const bool readable = file != NULL && fgetc(file) != EOF;
    const char *reason = sf_strerror(NULL);
    if (file == NULL || (!readable && ferror(file)))
        reason = strerror(errno);
    else if (!readable)
        reason = "is empty";
    if (file != NULL)
        fclose(file);
    return reason;
}

static bool openFile(Sound *input)
{
    input->file = sf_open(input->path, SFM_READ, &input->info);
    if (input->file == NULL)
        return refuse("%s: %s", input->path, openError(input->path));
    input->block = allocate((size_t) blockFrames * (size_t) input->info.channels, sizeof(float));
    input->length = countFrames(input);
    return input->length > 0 || refuse("%s: holds no samples", input->path);
}

Sound *soundOpen(const char *path)
{
    Sound *input = allocate(1, sizeof *input);
    input->path = path;
    if (!openFile(input)) {
        soundClose(input);
        return NULL;
    }
    return input;
}

bool soundHasChannel(const Sound *input, int channel)
{
    const int channels = input->info.channels;
    return channel <= channels || refuse("%s: has %d channel%s, so there is no channel %d", input->path,
                                         channels, channels > 1 ? "s" : "", channel);
}

int64_t soundRead(Sound *input, int channel, float *samples, int64_t count)
{
    const int channels = input->info.channels;
    const int width = channel == 0 ? channels : 1; /* samples kept of each frame */
    const float *source = input->block + (channel == 0 ? 0 : channel - 1);
    const int64_t wanted = least(count, input->length - input->position);
    int64_t done = 0;
    while (done < wanted) {
        const int64_t got = sf_readf_float(input->file, input->block, least(wanted - done, blockFrames));
        if (got <= 0) {
            input->endedEarly = true;
            break;
        }
        for (int64_t frame = 0; frame < got; ++frame) {
            for (int i = 0; i < width; ++i) {
                const float x = source[frame * channels + i];
                input->notFinite += !isfinite(x);
                samples[(done + frame) * width + i] = isfinite(x) ? x : 0.0f;
            }
        }
        done += got;
        input->position += got;
    }
    memset(samples + done * width, 0, (size_t) ((count - done) * width) * sizeof(float));
    return done;
}

void soundNoteDamage(const Sound *input)
{
    if (input->notFinite > 0)
        note("%s: %lld samples are not finite; they were taken as 0", input->path,
             (long long) input->notFinite);
    if (input->endedEarly)
        note("%s: ends after %lld of %lld frames; the rest was taken as silence", input->path,
             (long long) input->position, (long long) input->length);
}

void soundClose(Sound *input)
{
    if (input == NULL)
        return;
    if (input->file != NULL)
        sf_close(input->file);
    free(input->block);
    free(input);
}

const char *soundName(const char *path)
{
    const char *slash = strrchr(path, '/');
    return slash != NULL ? slash + 1 : path;
}

/* RF64 is WAV for more than four gigabytes; with the downgrade, a smaller file becomes an ordinary WAV file.
 */
static bool createFile(SoundOutput *output, const Sound *like, int rate)
{
    SF_INFO info = {.samplerate = rate, .channels = output->channels};
    info.format = SF_FORMAT_RF64 | (like->info.format & SF_FORMAT_SUBMASK);
    if (!sf_format_check(&info))
        info.format = SF_FORMAT_RF64 | SF_FORMAT_FLOAT;
    output->file = sf_open(output->part, SFM_WRITE, &info);
    if (output->file == NULL)
        return refuse("%s: %s", output->path, sf_strerror(NULL));
    sf_command(output->file, SFC_RF64_AUTO_DOWNGRADE, NULL, SF_TRUE);
    sf_command(output->file, SFC_SET_CLIPPING, NULL, SF_TRUE);
    return true;
}

SoundOutput *soundCreate(const char *path, const Sound *like, int rate, int channels)
{
    SoundOutput *output = allocate(1, sizeof *output);
    output->path = path;
    output->channels = channels;
    output->part = outputBegin(path, ".wav");
    if (output->part == NULL || !createFile(output, like, rate)) {
        soundFinish(output, false);
        return NULL;
    }
    return output;
}

bool soundWrite(SoundOutput *output, const float *samples, int64_t frames)
{
    return sf_writef_float(output->file, samples, frames) == frames ||
           refuse("%s: %s", output->path, sf_strerror(output->file));
}

bool soundFinish(SoundOutput *output, bool complete)
{
    if (output == NULL)
        return false;
    if (output->file != NULL && sf_close(output->file) != 0 && complete)
        complete = refuse("%s: could not be written to its end", output->path);
    complete = outputEnd(output->path, output->part, complete);
    free(output);
    return complete;
}
