#define _POSIX_C_SOURCE 200809L
#include "conversion.h"

#include "memory.h"
#include "messages.h"
#include "progress.h"

#include <kett/KTdebug.h>

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <unistd.h>

static void complain(void *done, int32_t level, int32_t code, const char *text)
{
    (void) level;
    (void) code;
    *(bool *) done = refuse("%s", text);
}

bool conversionBegin(Conversion *c, const Sound *input, int rate, const char *config)
{
    const int channels = input->info.channels;
    const int old = input->info.samplerate;
    *c = (Conversion){.channels = channels, .from = old, .to = rate};
    c->total = (input->length * rate + old - 1) / old;
    c->each = allocate((size_t) channels, sizeof *c->each);
    bool done = true;
    KTDEBUG_SetSink(complain, &done);
    for (int i = 0; done && i < channels; ++i)
        c->each[i] = ORVA_ResampleInit(old, rate, config);
    KTDEBUG_SetSink(NULL, NULL);
    return done;
}

bool conversionRun(const Conversion *c, Sound *input, SoundOutput *output)
{
    const int32_t most = c->to / c->from + 1; /* samples for one; a block gives one more */
    const int32_t block = most < blockFrames ? blockFrames / most : 1;
    const int32_t room = block * most + 1 + ORVA_ResampleFlushBufferSize(c->each[0]);
    float *in = allocate((size_t) (block + room) * (size_t) c->channels, sizeof *in);
    float *one = allocate((size_t) (block + room), sizeof *one);
    float *out = in + (int64_t) block * c->channels;
    float *converted = one + block;
    bool done = true;
    for (int64_t position = 0, left = c->total; done && left > 0; position += block) {
        const int64_t rest = input->length - position;
        const int32_t count = (int32_t) (rest < block ? rest : block);
        int32_t written = 0;
        if (count > 0)
            soundRead(input, 0, in, count);
        for (int channel = 0; channel < c->channels; ++channel) {
            for (int32_t i = 0; i < count; ++i)
                one[i] = in[(int64_t) i * c->channels + channel];
            written = count > 0 ? ORVA_Resample(c->each[channel], one, converted, count)
                                : ORVA_ResampleFlushBuffersEx(c->each[channel], converted, (int32_t) left);
            for (int32_t i = 0; i < written; ++i)
                out[(int64_t) i * c->channels + channel] = converted[i];
        }
        done = soundWrite(output, out, written);
        left -= written;
        progressShow(position + count, input->length);
    }
    free(in);
    free(one);
    return done;
}

void conversionEnd(Conversion *c)
{
    for (int i = 0; i < c->channels && c->each[i] != NULL; ++i)
        ORVA_ResampleDestroy(c->each[i]);
    free(c->each);
}

/* A file without a name, for samples as they are in memory. */
static SNDFILE *openScratch(int rate, int channels)
{
    SF_INFO info = {.samplerate = rate, .channels = channels};
    info.format = SF_FORMAT_RAW | SF_FORMAT_FLOAT | SF_ENDIAN_CPU;
    FILE *nameless = tmpfile();
    const int descriptor = nameless != NULL ? dup(fileno(nameless)) : -1;
    SNDFILE *file = descriptor >= 0 ? sf_open_fd(descriptor, SFM_RDWR, &info, SF_TRUE) : NULL;
    if (file == NULL)
        refuse("temporary file: %s", descriptor >= 0 ? sf_strerror(NULL) : strerror(errno));
    if (nameless != NULL)
        fclose(nameless);
    return file;
}

Sound *conversionOf(Sound *input, int rate)
{
    Conversion c;
    SoundOutput scratch = {.path = "temporary file", .channels = input->info.channels};
    bool done = conversionBegin(&c, input, rate, NULL);
    if (done) {
        scratch.file = openScratch(rate, scratch.channels);
        done = scratch.file != NULL && conversionRun(&c, input, &scratch);
    }
    conversionEnd(&c);
    if (!done) {
        if (scratch.file != NULL)
            sf_close(scratch.file);
        return NULL;
    }
    Sound *result = allocate(1, sizeof *result);
    *result = (Sound){.path = input->path, .file = scratch.file, .info = input->info, .length = c.total};
    result->info.samplerate = rate;
    result->info.frames = c.total;
    result->block = allocate((size_t) blockFrames * (size_t) scratch.channels, sizeof(float));
    return result;
}
