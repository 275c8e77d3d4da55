/* Writes a sound at another sample rate, every channel of it, as long as it was.
 *
 *     $ resample Front_Center.wav cd.wav 44100
 *     cd.wav: 68545 frames at 48000 Hz became 62976 at 44100 Hz
 *     $ resample Front_Center.wav phone.wav 8000 "type=zoh"
 *     phone.wav: 68545 frames at 48000 Hz became 11425 at 8000 Hz
 *
 * Without a configuration it is "type=polyphase; order=30; delaycompensation=1". A higher order takes longer and keeps more
 * of the highest frequencies. "type=zoh" is fast and rough, and has only some pairs of rates.
 */
#include "common/memory.h"
#include "common/messages.h"
#include "common/options.h"
#include "common/progress.h"
#include "common/sound.h"

#include <kett/KTdebug.h>
#include <orva/orva.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { mostChannels = 1024, blockFrames = 4096 };

static ORVA_RESAMPLER *converters[mostChannels]; /* one a channel; all give the same number of frames */

/* Sends the sound through, block by block, and behind it as much of the filter's tail as belongs to it. */
static bool convert(sound *input, sound_output *output, int rate, int64_t total)
{
    const int channels = input->info.channels;
    const int32_t each = rate / input->info.samplerate + 1; /* the most for a frame; a block, one more */
    const int32_t block = each < blockFrames ? blockFrames / each : 1;
    const int32_t room = block * each + 1 + ORVA_ResampleFlushBufferSize(converters[0]);
    float *in = allocate((size_t) (block + room) * (size_t) channels, sizeof *in);
    float *one = allocate((size_t) (block + room), sizeof *one);
    float *out = in + block * channels, *converted = one + block;
    bool done = true;
    for (int64_t position = 0, left = total; done && left > 0; position += block) {
        const int64_t rest = input->length - position;
        const int32_t count = (int32_t) (rest < block ? rest : block);
        int32_t written = 0;
        if (count > 0)
            sound_read(input, 0, in, count);
        for (int c = 0; c < channels; ++c) {
            for (int32_t i = 0; i < count; ++i)
                one[i] = in[(int64_t) i * channels + c];
            written = count > 0 ? ORVA_Resample(converters[c], one, converted, count)
                                : ORVA_ResampleFlushBuffersEx(converters[c], converted, (int32_t) left);
            for (int32_t i = 0; i < written; ++i)
                out[(int64_t) i * channels + c] = converted[i];
        }
        done = sound_write(output, out, written);
        left -= written;
        progress_show(position + count, input->length);
    }
    free(in), free(one);
    return done;
}

/* What the library has against the rates or the configuration. */
static void complain(void *done, int32_t level, int32_t code, const char *text)
{
    (void) level, (void) code;
    *(bool *) done = refuse("%s", text);
}

int main(int count, char **arguments)
{
    int32_t order;
    const option keys[] = {{"type", OPTION_WORD, "polyphase poly zoh ", 0, 0, "polyphase, poly or zoh"},
                           {"order", OPTION_INTEGER, &order, 1, 1 << 20, "a whole number from 1 to 1048576"},
                           {"delaycompensation", OPTION_WORD, "1 0 yes no ", 0, 0, "yes or no"}};
    bool done = count == 4 || count == 5 || refuse("usage: resample SOUND OUTPUT.wav RATE [CONFIGURATION]");
    char *config = count == 5 ? arguments[4] : "", *end = "";
    const long given = done ? strtol(arguments[3], &end, 10) : 0;
    const int rate = given >= 1 && given <= 1000000 && *end == '\0' ? (int) given : 0;
    done = done && (rate > 0 || refuse("rate: %s is not from 1 to 1000000", arguments[3])) &&
           (strlen(config) <= 256 || refuse("configuration: longer than 256 bytes")) &&
           options_read(config, keys, sizeof keys / sizeof *keys);
    sound *input = done ? sound_open(arguments[1]) : NULL;
    const int channels = input ? input->info.channels : 0, old = input ? input->info.samplerate : 1;
    done = input != NULL && (channels <= mostChannels || refuse("%s: more than 1024 channels", input->path));
    KTDEBUG_SetSink(complain, &done);
    for (int c = 0; done && c < channels; ++c)
        converters[c] = ORVA_ResampleInit(old, rate, config);
    KTDEBUG_SetSink(NULL, NULL);
    const int64_t total = input ? (input->length * rate + old - 1) / old : 0;
    sound_output *output = done ? sound_create(arguments[2], input, rate, channels) : NULL;
    done = sound_finish(output, output != NULL && convert(input, output, rate, total));
    if (done) {
        printf("%s: %lld frames at %d Hz became %lld at %d Hz\n", arguments[2], (long long) input->length,
               old, (long long) total, rate);
        sound_note_damage(input);
    }
    for (int c = 0; c < channels && converters[c] != NULL; ++c)
        ORVA_ResampleDestroy(converters[c]);
    sound_close(input);
    return done ? 0 : 1;
}
