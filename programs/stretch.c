/* Plays a sound faster or slower at the same pitch, and draws both over their timelines.
 *
 *     $ stretch Front_Center.wav slow.wav slow.png 0.7
 *     slow.wav: 1.43 s became 2.05 s; its middle is what stood at 0.72 s
 *     $ stretch Front_Center.wav change.wav change.png "1.5 0.4:0.6 0.9:2"
 *     change.wav: 1.43 s became 1.36 s; its middle is what stood at 0.65 s
 *
 * The speed, 0.1 to 3, is one number or several, each with the second of the input from which on it holds (1
 * before the first). A numbered line in the picture stands at a moment of the output, and at what it plays.
 */
#include "common/envelope.h"
#include "common/memory.h"
#include "common/messages.h"
#include "common/progress.h"
#include "common/schedule.h"
#include "common/sound.h"

#include <orva/orva.h>

#include <stdio.h>
#include <stdlib.h>

enum { frameMs = 20, mostChannels = 1024 };

static ORVA_SOLAFS *scalers[mostChannels]; /* one a channel; all take and give the same number of frames */
static Envelope before, after;             /* outlines of what went in and what came out */

/* Sends the sound through, block by block, and after it the silence that brings out its tail. */
static bool stretch(Sound *input, const Schedule *speeds, SoundOutput *output)
{
    const int rate = input->info.samplerate;
    const int channels = input->info.channels;
    const int64_t all = input->length + 7 * (frameMs * rate / 1000 & ~7) / 2;
    const int32_t block = rate / 10;
    const int32_t room = 20 * block; /* more than a block gives at the lowest speed */
    float *in = allocate((size_t) (block + room) * (size_t) channels, sizeof *in);
    float *out = in + (int64_t) block * channels;
    bool done = true;
    int64_t position = 0;
    while (done && position < all) {
        int64_t count = all - position < block ? all - position : block;
        const float speed = scheduleAt(speeds, position, rate, &count);
        soundRead(input, 0, in, count); /* zeros after its end */
        int32_t taken = 0;
        int32_t written = 0;
        for (int c = 0; c < channels; ++c) {
            taken = ORVA_SolafsInputData(scalers[c], c, in, (int32_t) count, speed);
            written = ORVA_SolafsOutputData(scalers[c], c, out, room);
        }
        envelopeAdd(&before, in, count, channels);
        envelopeAdd(&after, out, written, channels);
        if (taken == count)
            done = soundWrite(output, out, written);
        else
            done = refuse("%s: is too long, 2147483647 frames are the most", input->path);
        position += count;
        progressShow(position, all);
    }
    free(in);
    return done;
}

static bool draw(const Sound *input, const char *speeds, const char *path)
{
    const int rate = input->info.samplerate;
    const double from = (double) input->length / rate;
    const double to = (double) after.total / rate;
    Plot *picture = plotCreate(soundName(input->path), speeds, 2, 220, false);
    envelopeDraw(&before, picture, 0, rate, from, "Input");
    envelopeDraw(&after, picture, 1, rate, to, "Output");
    for (int mark = 1; mark <= 3; ++mark) {
        const int64_t heard = ORVA_SolafsTranslateCursorPosition(scalers[0], after.total * mark / 4);
        const char name[] = {(char) ('0' + mark), '\0'};
        plotCursor(picture, 0, (double) heard / rate, name);
        plotCursor(picture, 1, to * mark / 4, name);
    }
    const bool done = plotSave(picture, path);
    plotDestroy(picture);
    return done;
}

static bool makeScalers(const Sound *input)
{
    const int rate = input->info.samplerate;
    const int channels = input->info.channels;
    if (rate < 400 || rate > 1000000 || channels > mostChannels)
        return refuse("%s: the rate must be from 400 to 1000000 Hz, the channels 1024 at most", input->path);
    for (int c = 0; c < channels; ++c) {
        scalers[c] = ORVA_SolafsCreate(frameMs, rate, channels);
        if (scalers[c] == NULL)
            return refuse("out of memory");
    }
    return true;
}

static bool run(Sound *input, const Schedule *speeds, char **arguments)
{
    const char *wav = arguments[2];
    const int rate = input->info.samplerate;
    SoundOutput *output = soundCreate(wav, input, rate, input->info.channels);
    if (output == NULL)
        return false;
    const bool done = stretch(input, speeds, output) && draw(input, arguments[4], arguments[3]);
    if (!soundFinish(output, done))
        return false;
    const double middle = (double) ORVA_SolafsTranslateCursorPosition(scalers[0], after.total / 2);
    printf("%s: %.2f s became %.2f s; its middle is what stood at %.2f s\n", wav,
           (double) input->length / rate, (double) after.total / rate, middle / rate);
    soundNoteDamage(input);
    return true;
}

int main(int count, char **arguments)
{
    Schedule speeds = {.name = "speed", .least = 0.1, .most = 3};
    if (count != 5) {
        refuse("usage: stretch SOUND OUTPUT.wav PICTURE.png SPEED");
        return 1;
    }
    if (!scheduleRead(&speeds, arguments[4], 1))
        return 1;

    Sound *input = soundOpen(arguments[1]);
    const bool done = input != NULL && makeScalers(input) && run(input, &speeds, arguments);
    for (int c = 0; c < mostChannels && scalers[c] != NULL; ++c)
        ORVA_SolafsDestroy(scalers[c]);
    soundClose(input);
    return done ? 0 : 1;
}
