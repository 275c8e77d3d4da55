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
} Settings;

static bool draw(Sound *input, const Settings *s, const char *path)
{
    const double rate = input->info.samplerate;
    const double seconds = (double) input->length / rate;
    char subtitle[128];
    snprintf(subtitle, sizeof subtitle, "%s window of %d samples every %d samples, channel %d of %d",
             ORVA_GetWindowName(s->window), s->size, s->hop, s->channel, input->info.channels);
    Plot *picture = plotCreate(soundName(input->path), subtitle, 1, 400, true);
    plotPanel(picture, 0, axisTime(seconds), axisFrequency(0, rate / 2, false));
    Raster *levels = plotRaster(picture, 0);
    Frames reader = framesBegin(input, s->channel, s->size, s->hop);
    Spectrum present;

    bool done = spectrumBegin(&present, s->window, s->size);
    while (done && framesNext(&reader, present.frame)) {
        spectrumTransform(&present);
        spectrumMeasure(&present, NULL, s->range);
        rasterAdd(levels, framesLeft(&reader), framesRight(&reader), present.levels, present.bins);
        progressShow(reader.next, reader.count);
    }
    plotImage(picture, 0, levels, -s->range, 0, "Level (dB re full-scale sine)");
    done = done && plotSave(picture, path);
    if (done) {
        soundNoteDamage(input);
        printf("%s: %.2f s, 0 to %g Hz, frames: %lld, loudest point: %.1f dB\n", path, seconds, rate / 2,
               (long long) reader.count, rasterMax(levels));
    }
    spectrumEnd(&present);
    framesEnd(&reader);
    rasterDestroy(levels);
    plotDestroy(picture);
    return done;
}

int main(int count, char **arguments)
{
    Settings s = {.window = ORVA_GetWindowType("Hanning"), .size = 1024, .channel = 1, .range = 90};
    const Option options[] = {
        {"window", windowOption, &s.window, 0, 0, NULL},
        {"size", integerOption, &s.size, 2, 1 << 20, "a whole number from 2 to 1048576"},
        {"hop", integerOption, &s.hop, 1, INT32_MAX, "a whole number of 1 or more"},
        {"range", realOption, &s.range, 1e-30, 1e30, "a number above 0, 1e30 at most"},
        {"channel", integerOption, &s.channel, 1, INT32_MAX, "a whole number of 1 or more"}};
    if (count != 3 && count != 4) {
        refuse("usage: spectrogram SOUND PICTURE.png [CONFIGURATION]");
        return 1;
    }
    if (!optionsRead(arguments[3], options, sizeof options / sizeof *options))
        return 1;
    if (s.hop == 0)
        s.hop = (s.size + 3) / 4;

    Sound *input = soundOpen(arguments[1]);
    const bool done = input != NULL && soundHasChannel(input, s.channel) && draw(input, &s, arguments[2]);
    soundClose(input);
    return done ? 0 : 1;
}
