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

/* White noise of mean power 1, the same in every run: a linear congruential generator, uniformly distributed. */
static float noise(uint32_t *state)
{
    *state = *state * 1664525u + 1013904223u;
    return (float) ((*state / 2147483648.0 - 1.0) * sqrt(3.0));
}

/* The mean power of the first channel; 0 where the file cannot be read. */
static double power(const char *path)
{
    Sound *input = soundOpen(path);
    if (input == NULL)
        return 0;
    float block[blockFrames];
    double sum = 0;
    while (soundRead(input, 1, block, blockFrames) > 0)
        sum += FVectorSumOfSquares(block, blockFrames);
    const double mean = sum / (double) input->length;
    soundClose(input);
    return mean;
}

static bool writeTwice(Sound *input, Sound *late, int32_t delay, float level, SoundOutput *output)
{
    float now[blockFrames], then[blockFrames], both[2 * blockFrames];
    uint32_t state = 1;
    int64_t silence = delay; /* of the second channel, still to come */
    for (int64_t left = input->length + delay; left > 0; left -= blockFrames) {
        const int64_t quiet = silence < blockFrames ? silence : blockFrames;
        const int64_t length = left < blockFrames ? left : blockFrames;
        soundRead(input, 1, now, blockFrames);
        for (int64_t i = 0; i < quiet; ++i)
            then[i] = 0;
        soundRead(late, 1, then + quiet, blockFrames - quiet);
        silence -= quiet;
        for (int64_t i = 0; i < length; ++i) {
            both[2 * i] = now[i];
            both[2 * i + 1] = then[i] + level * noise(&state);
        }
        if (!soundWrite(output, both, length))
            return false;
    }
    return true;
}

/* Reads the input at two places at once, as two sounds. */
static bool run(Sound *input, Sound *late, int32_t delay, float decibels, const char *path)
{
    SoundOutput *output = soundCreate(path, input, input->info.samplerate, 2);
    if (output == NULL)
        return false;
    const float level = (float) sqrt(power(input->path) * pow(10, -decibels / 10));
    const bool done = soundFinish(output, writeTwice(input, late, delay, level, output));
    if (done)
        printf("%s: the sound, and beside it the same %d samples later with noise at %g dB\n", path, delay,
               (double) -decibels);
    return done;
}

int main(int count, char **arguments)
{
    int32_t delay = 480;
    float decibels = 20;
    const Option options[] = {
        {"delay", integerOption, &delay, 0, 1 << 24, "a whole number from 0 to 16777216"},
        {"noise", realOption, &decibels, -200, 200, "a number from -200 to 200"}};
    if (count != 3 && count != 4) {
        refuse("usage: twice SOUND OUTPUT.wav [\"delay=N; noise=DB\"]");
        return 1;
    }
    if (!optionsRead(arguments[3], options, sizeof options / sizeof *options))
        return 1;

    Sound *input = soundOpen(arguments[1]);
    Sound *late = input != NULL ? soundOpen(arguments[1]) : NULL;
    const bool done = late != NULL && run(input, late, delay, decibels, arguments[2]);
    soundClose(input);
    soundClose(late);
    return done ? 0 : 1;
}
