/* Draws the spectrogram of one channel of a sound file.
 *
 *     $ spectrogram Front_Center.wav spectrogram.png "window=Hanning; size=1024; hop=128; range=80"
 *     spectrogram.png: 1.43 s, 0 to 24000 Hz, frames: 536, loudest point: -12.2 dB
 *
 * Every key may be left out, channel=1 too; hop is then a quarter of size. A sine of full scale has 0 dB, and range
 * is what is shown below that. Frames are centred on every hop-th sample. Of all that falls on one point of the
 * picture, the loudest shows. The library is called in common/spectrum.c.
 */
#include "common/frames.h"
#include "common/messages.h"
#include "common/options.h"
#include "common/plot.h"
#include "common/progress.h"
#include "common/spectrum.h"

#include <orva/orva.h>
#include <stdio.h>

typedef struct {
    int32_t window, size, hop, channel;
    float range;
} settings;

static bool draw(sound *input, const settings *s, const char *path)
{
    const double rate = input->info.samplerate, seconds = (double) input->length / rate;
    char subtitle[128];
    snprintf(subtitle, sizeof subtitle, "%s window of %d samples every %d samples, channel %d of %d",
             ORVA_GetWindowName(s->window), s->size, s->hop, s->channel, input->info.channels);
    plot *picture = plot_create(sound_name(input->path), subtitle, 1, 400, true);
    plot_panel(picture, 0, axis_time(seconds), axis_frequency(0, rate / 2, false));
    raster *levels = plot_raster(picture, 0);
    frames reader = frames_begin(input, s->channel, s->size, s->hop);
    spectrum present;

    bool done = spectrum_begin(&present, s->window, s->size);
    while (done && frames_next(&reader, present.frame)) {
        spectrum_transform(&present);
        spectrum_measure(&present, NULL, s->range);
        raster_add(levels, frames_left(&reader), frames_right(&reader), present.levels, present.bins);
        progress_show(reader.next, reader.count);
    }
    plot_image(picture, 0, levels, -s->range, 0, "Level (dB re full-scale sine)");
    done = done && plot_save(picture, path);
    if (done) {
        sound_note_damage(input);
        printf("%s: %.2f s, 0 to %g Hz, frames: %lld, loudest point: %.1f dB\n", path, seconds, rate / 2,
               (long long) reader.count, raster_max(levels));
    }
    spectrum_end(&present);
    frames_end(&reader);
    raster_destroy(levels);
    plot_destroy(picture);
    return done;
}

int main(int count, char **arguments)
{
    settings s = {.window = ORVA_GetWindowType("Hanning"), .size = 1024, .channel = 1, .range = 90};
    const option options[] = {
        {"window", OPTION_WINDOW, &s.window, 0, 0, NULL},
        {"size", OPTION_INTEGER, &s.size, 2, 1 << 20, "a whole number from 2 to 1048576"},
        {"hop", OPTION_INTEGER, &s.hop, 1, INT32_MAX, "a whole number of 1 or more"},
        {"range", OPTION_REAL, &s.range, 1e-30, 1e30, "a number above 0, 1e30 at most"},
        {"channel", OPTION_INTEGER, &s.channel, 1, INT32_MAX, "a whole number of 1 or more"}};
    const bool ready =
        (count == 3 || count == 4 || refuse("usage: spectrogram SOUND PICTURE.png [CONFIGURATION]")) &&
        options_read(arguments[3], options, sizeof options / sizeof *options);
    s.hop = s.hop > 0 ? s.hop : (s.size + 3) / 4;

    sound *input = ready ? sound_open(arguments[1]) : NULL;
    const bool done = input != NULL && sound_has_channel(input, s.channel) && draw(input, &s, arguments[2]);
    sound_close(input);
    return done ? 0 : 1;
}
