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
static envelope before, after;             /* outlines of what went in and what came out */

/* Sends the sound through, block by block, and behind it the silence that brings out its tail. */
static bool stretch(sound *input, const schedule *speeds, sound_output *output)
{
    const int rate = input->info.samplerate, channels = input->info.channels;
    const int64_t all = input->length + 7 * (frameMs * rate / 1000 & ~7) / 2;
    const int32_t block = rate / 10, room = 20 * block; /* more than a block gives at the lowest speed */
    float *in = allocate((size_t) (block + room) * (size_t) channels, sizeof *in);
    float *out = in + (int64_t) block * channels;
    bool done = true;
    for (int64_t position = 0, count = 0; done && position < all; position += count) {
        count = all - position < block ? all - position : block;
        const float speed = schedule_at(speeds, position, rate, &count);
        sound_read(input, 0, in, count); /* zeros behind its end */
        int32_t taken = 0, written = 0;
        for (int c = 0; c < channels; ++c) {
            taken = ORVA_SolafsInputData(scalers[c], c, in, (int32_t) count, speed);
            written = ORVA_SolafsOutputData(scalers[c], c, out, room);
        }
        envelope_add(&before, in, count, channels);
        envelope_add(&after, out, written, channels);
        done = (taken == count || refuse("%s: is too long, 2147483647 frames are the most", input->path)) &&
               sound_write(output, out, written);
        progress_show(position + count, all);
    }
    free(in);
    return done;
}

static bool draw(const sound *input, const char *speeds, const char *path)
{
    const int rate = input->info.samplerate;
    const double from = (double) input->length / rate, to = (double) after.total / rate;
    plot *picture = plot_create(sound_name(input->path), speeds, 2, 220, false);
    envelope_draw(&before, picture, 0, rate, from, "Input");
    envelope_draw(&after, picture, 1, rate, to, "Output");
    for (int mark = 1; mark <= 3; ++mark) {
        const int64_t heard = ORVA_SolafsTranslateCursorPosition(scalers[0], after.total * mark / 4);
        const char name[] = {(char) ('0' + mark), '\0'};
        plot_cursor(picture, 0, (double) heard / rate, name);
        plot_cursor(picture, 1, to * mark / 4, name);
    }
    const bool done = plot_save(picture, path);
    plot_destroy(picture);
    return done;
}

int main(int count, char **arguments)
{
    schedule speeds = {.name = "speed", .least = 0.1, .most = 3};
    const bool ready = (count == 5 || refuse("usage: stretch SOUND OUTPUT.wav PICTURE.png SPEED")) &&
                       schedule_read(&speeds, arguments[4], 1);
    sound *input = ready ? sound_open(arguments[1]) : NULL;
    const int rate = input != NULL ? input->info.samplerate : 0;
    const int channels = input != NULL ? input->info.channels : 0;
    bool done = input != NULL;
    if (done && (rate < 400 || rate > 1000000 || channels > mostChannels))
        done = refuse("%s: the rate must be from 400 to 1000000 Hz, the channels 1024 at most", input->path);
    for (int c = 0; done && c < channels; ++c)
        done = (scalers[c] = ORVA_SolafsCreate(frameMs, rate, channels)) != NULL || refuse("out of memory");
    sound_output *output = done ? sound_create(arguments[2], input, rate, channels) : NULL;
    done = output != NULL && stretch(input, &speeds, output) && draw(input, arguments[4], arguments[3]);
    done = sound_finish(output, done);
    if (done) {
        const double middle = (double) ORVA_SolafsTranslateCursorPosition(scalers[0], after.total / 2);
        printf("%s: %.2f s became %.2f s; its middle is what stood at %.2f s\n", arguments[2],
               (double) input->length / rate, (double) after.total / rate, middle / rate);
        sound_note_damage(input);
    }
    for (int c = 0; c < channels; ++c)
        ORVA_SolafsDestroy(scalers[c]);
    sound_close(input);
    return done ? 0 : 1;
}
