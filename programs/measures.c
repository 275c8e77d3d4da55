/* Draws measures of a recording, frame by frame: a spectrum over a mel axis, energy and zero crossings.
 *
 *     $ measures Front_Center.wav measures.png "size=1024; hop=256"
 *     measures.png: 1.43 s, frames: 268, energy up to -8.9 dB, zero crossings up to 23.0 per ms
 *
 * Every key may be left out, channel=1 too. 0 dB of energy is a variance of 0.32768; a frame without any has
 * 0 dB as well, and is left out here.
 */
#include "common/frames.h"
#include "common/memory.h"
#include "common/messages.h"
#include "common/options.h"
#include "common/plot.h"
#include "common/progress.h"
#include "common/spectrum.h"

#include <math.h>
#include <orva/orva.h>
#include <stdio.h>
#include <stdlib.h>

enum { melRows = 256, range = 80 };

/* Rows even in mels, from 0 to half the rate: the loudest bin that falls into each, or else the nearest. */
static void to_mels(const spectrum *s, double rate, float *rows)
{
    const double step = ORVAUTIL_Freq2Mels(rate / 2) / (melRows - 1), hertz = rate / s->size;
    for (int i = 0; i < melRows; ++i) {
        const double low = ORVAUTIL_Mels2Freq((i - 0.5) * step), high = ORVAUTIL_Mels2Freq((i + 0.5) * step);
        const int nearest = (int) fmin(ORVAUTIL_Mels2Freq(i * step) / hertz + 0.5, s->bins - 1);
        rows[i] = s->levels[nearest];
        for (int k = (int) fmax(ceil(low / hertz), 0); k <= high / hertz && k < s->bins; ++k)
            rows[i] = fmaxf(rows[i], s->levels[k]);
    }
}

static bool draw(frames *reader, const char *path)
{
    const double rate = reader->input->info.samplerate, hop = reader->hop / rate;
    const axis time = axis_time((double) reader->input->length / rate);
    float *energy = allocate((size_t) reader->count, 2 * sizeof *energy), *crossings = energy + reader->count;
    float loudest = -INFINITY, most = 0, rows[melRows];
    char subtitle[64];
    snprintf(subtitle, sizeof subtitle, "Frames of %d samples every %d samples", reader->size, reader->hop);
    plot *picture = plot_create(sound_name(reader->input->path), subtitle, 3, 200, true);
    plot_panel(picture, 0, time, axis_mel(rate / 2));
    raster *mels = plot_raster(picture, 0);
    spectrum present;
    bool done = spectrum_begin(&present, ORVA_GetWindowType("Hanning"), reader->size);
    for (int64_t i = 0; done && frames_next(reader, present.frame); ++i) {
        energy[i] = ORVA_CalcEnergy(present.frame, reader->size);
        energy[i] = energy[i] != 0 ? energy[i] : NAN;
        loudest = fmaxf(loudest, energy[i]); /* passes over what is not a number */
        crossings[i] = ORVA_CalcZeroCrossRate(present.frame, reader->size) * (float) rate / 1000;
        most = fmaxf(most, crossings[i]);
        spectrum_transform(&present);
        spectrum_measure(&present, NULL, range);
        to_mels(&present, rate, rows);
        raster_add(mels, frames_left(reader), frames_right(reader), rows, melRows);
        progress_show(reader->next, reader->count);
    }
    const double top = 10 * ceil(fmax((double) loudest, -200) / 10);
    plot_image(picture, 0, mels, -range, 0, "Level (dB)");
    plot_panel(picture, 1, time, axis_linear(top - range, top, "Energy (dB)"));
    plot_panel(picture, 2, time, axis_linear(0, fmax(ceil((double) most), 1), "Zero crossings (1/ms)"));
    plot_samples(picture, 1, 0, hop, energy, reader->count, NULL);
    plot_samples(picture, 2, 0, hop, crossings, reader->count, NULL);
    done = done && plot_save(picture, path);
    if (done)
        printf("%s: %.2f s, frames: %lld, energy up to %.1f dB, zero crossings up to %.1f per ms\n", path,
               time.last, (long long) reader->count, (double) loudest, (double) most);
    spectrum_end(&present);
    raster_destroy(mels);
    plot_destroy(picture);
    free(energy);
    return done;
}

int main(int count, char **arguments)
{
    int32_t size = 1024, hop = 256, channel = 1;
    const option options[] = {
        {"size", OPTION_INTEGER, &size, 3, 1 << 20, "a whole number from 3 to 1048576"},
        {"hop", OPTION_INTEGER, &hop, 1, INT32_MAX, "a whole number of 1 or more"},
        {"channel", OPTION_INTEGER, &channel, 1, INT32_MAX, "a whole number of 1 or more"}};
    bool done = (count == 3 || count == 4 || refuse("usage: measures SOUND PICTURE.png [CONFIGURATION]")) &&
                options_read(arguments[3], options, 3);
    sound *input = done ? sound_open(arguments[1]) : NULL;
    done = input != NULL && sound_has_channel(input, channel);
    if (done) {
        frames reader = frames_begin(input, channel, size, hop);
        done = draw(&reader, arguments[2]);
        frames_end(&reader);
    }
    if (done)
        sound_note_damage(input);
    sound_close(input);
    return done ? 0 : 1;
}
