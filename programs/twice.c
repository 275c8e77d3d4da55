/* Writes a sound twice, as the two channels of a WAV file: the first channel of the input as it is, and the same delayed,
 * with white noise beside it. What delay finds again.
 *
 *     $ twice Front_Center.wav twice.wav "delay=480; noise=20"
 *     twice.wav: the sound, and beside it the same 480 samples later with noise at -20 dB
 *
 * The noise lies that many dB below the sound, both as the mean power of the whole file.
 */
#include "common/memory.h"
#include "common/messages.h"
#include "common/options.h"
#include "common/sound.h"

#include <kett/KTvector.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

enum { BLOCK = 4096 };

/* White noise of mean power 1, the same in every run: a linear congruential generator, uniformly distributed. */
static float noise(uint32_t *state)
{
    *state = *state * 1664525u + 1013904223u;
    return (float) ((*state / 2147483648.0 - 1.0) * sqrt(3.0));
}

/* The mean power of the first channel. */
static double power(const char *path)
{
    sound *input = sound_open(path);
    float block[BLOCK];
    double sum = 0, length = input != NULL ? (double) input->length : 1;
    while (input != NULL && sound_read(input, 1, block, BLOCK) > 0)
        sum += FVectorSumOfSquares(block, BLOCK);
    sound_close(input);
    return sum / length;
}

static bool write_twice(sound *input, sound *late, int32_t delay, float level, sound_output *output)
{
    float now[BLOCK], then[BLOCK], both[2 * BLOCK];
    uint32_t state = 1;
    int64_t silence = delay; /* of the second channel, still to come */
    for (int64_t left = input->length + delay; left > 0; left -= BLOCK) {
        const int64_t quiet = silence < BLOCK ? silence : BLOCK, length = left < BLOCK ? left : BLOCK;
        sound_read(input, 1, now, BLOCK);
        for (int64_t i = 0; i < quiet; ++i)
            then[i] = 0;
        sound_read(late, 1, then + quiet, BLOCK - quiet);
        silence -= quiet;
        for (int64_t i = 0; i < length; ++i) {
            both[2 * i] = now[i];
            both[2 * i + 1] = then[i] + level * noise(&state);
        }
        if (!sound_write(output, both, length))
            return false;
    }
    return true;
}

int main(int count, char **arguments)
{
    int32_t delay = 480;
    float decibels = 20;
    const option options[] = {
        {"delay", OPTION_INTEGER, &delay, 0, 1 << 24, "a whole number from 0 to 16777216"},
        {"noise", OPTION_REAL, &decibels, -200, 200, "a number from -200 to 200"}};
    const bool ready =
        (count == 3 || count == 4 || refuse("usage: twice SOUND OUTPUT.wav [\"delay=N; noise=DB\"]")) &&
        options_read(arguments[3], options, sizeof options / sizeof *options);
    sound *input = ready ? sound_open(arguments[1]) : NULL;
    sound *late = input != NULL ? sound_open(arguments[1]) : NULL;
    sound_output *output = late != NULL ? sound_create(arguments[2], input, input->info.samplerate, 2) : NULL;
    const float level = output != NULL ? (float) sqrt(power(arguments[1]) * pow(10, -decibels / 10)) : 0;
    bool done = output != NULL && write_twice(input, late, delay, level, output);
    done = sound_finish(output, done);
    if (done)
        printf("%s: the sound, and beside it the same %d samples later with noise at %g dB\n", arguments[2],
               delay, (double) -decibels);
    sound_close(input);
    sound_close(late);
    return done ? 0 : 1;
}
