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

#include <orva/orva.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>

enum { melRows = 256, range = 80 };

/* Rows even in mels, from 0 to half the rate: the loudest bin that falls into each, or else the nearest. */
static void toMels(const Spectrum *s, double rate, float *rows)
{
    const double step = ORVAUTIL_Freq2Mels(rate / 2) / (melRows - 1);
    const double hertz = rate / s->size; /* from one bin to the next */
    for (int i = 0; i < melRows; ++i) {
        const double low = ORVAUTIL_Mels2Freq((i - 0.5) * step);
        const double high = ORVAUTIL_Mels2Freq((i + 0.5) * step);
        const int nearest = (int) fmin(ORVAUTIL_Mels2Freq(i * step) / hertz + 0.5, s->bins - 1);
        rows[i] = s->levels[nearest];
        for (int k = (int) fmax(ceil(low / hertz), 0); k <= high / hertz && k < s->bins; ++k)
            rows[i] = fmaxf(rows[i], s->levels[k]);
    }
}

typedef struct {
    float *energy;    /* of each frame, dB; not a number where there is none */
    float *crossings; /* of each frame, per ms */
    float loudest, most;
} Measures;

static void measureFrame(Measures *m, int64_t i, const float *frame, int32_t size, double rate)
{
    const float energy = ORVA_CalcEnergy(frame, size);
    m->energy[i] = energy != 0 ? energy : NAN;
    m->loudest = fmaxf(m->loudest, m->energy[i]); /* passes over what is not a number */
    m->crossings[i] = ORVA_CalcZeroCrossRate(frame, size) * (float) rate / 1000;
    m->most = fmaxf(m->most, m->crossings[i]);
}

/* Measures all frames, and fills the grid with their spectra. */
static bool measure(Frames *reader, Measures *m, Raster *mels)
{
    const double rate = reader->input->info.samplerate;
    float rows[melRows];
    Spectrum present;
    const bool done = spectrumBegin(&present, ORVA_GetWindowType("Hanning"), reader->size);
    for (int64_t i = 0; done && framesNext(reader, present.frame); ++i) {
        measureFrame(m, i, present.frame, reader->size, rate);
        spectrumTransform(&present);
        spectrumMeasure(&present, NULL, range);
        toMels(&present, rate, rows);
        rasterAdd(mels, framesLeft(reader), framesRight(reader), rows, melRows);
        progressShow(reader->next, reader->count);
    }
    spectrumEnd(&present);
    return done;
}

static bool draw(Frames *reader, const char *path)
{
    const double rate = reader->input->info.samplerate;
    const double hop = reader->hop / rate;
    const Axis time = axisTime((double) reader->input->length / rate);
    char subtitle[64];
    snprintf(subtitle, sizeof subtitle, "Frames of %d samples every %d samples", reader->size, reader->hop);
    Plot *picture = plotCreate(soundName(reader->input->path), subtitle, 3, 200, true);
    plotPanel(picture, 0, time, axisMel(rate / 2));
    Raster *mels = plotRaster(picture, 0);

    Measures m = {.loudest = -INFINITY};
    m.energy = allocate((size_t) reader->count, sizeof *m.energy);
    m.crossings = allocate((size_t) reader->count, sizeof *m.crossings);
    bool done = measure(reader, &m, mels);
    if (done) {
        const double top = 10 * ceil(fmax((double) m.loudest, -200) / 10);
        plotImage(picture, 0, mels, -range, 0, "Level (dB)");
        plotPanel(picture, 1, time, axisLinear(top - range, top, "Energy (dB)"));
        plotPanel(picture, 2, time, axisLinear(0, fmax(ceil((double) m.most), 1), "Zero crossings (1/ms)"));
        plotSamples(picture, 1, 0, hop, m.energy, reader->count, NULL);
        plotSamples(picture, 2, 0, hop, m.crossings, reader->count, NULL);
        done = plotSave(picture, path);
    }
    if (done)
        printf("%s: %.2f s, frames: %lld, energy up to %.1f dB, zero crossings up to %.1f per ms\n", path,
               time.last, (long long) reader->count, (double) m.loudest, (double) m.most);
    free(m.energy);
    free(m.crossings);
    rasterDestroy(mels);
    plotDestroy(picture);
    return done;
}

int main(int count, char **arguments)
{
    int32_t size = 1024, hop = 256, channel = 1;
    const Option options[] = {
        {"size", integerOption, &size, 3, 1 << 20, "a whole number from 3 to 1048576"},
        {"hop", integerOption, &hop, 1, INT32_MAX, "a whole number of 1 or more"},
        {"channel", integerOption, &channel, 1, INT32_MAX, "a whole number of 1 or more"}};
    if (count != 3 && count != 4) {
        refuse("usage: measures SOUND PICTURE.png [CONFIGURATION]");
        return 1;
    }
    if (!optionsRead(arguments[3], options, sizeof options / sizeof *options))
        return 1;

    bool done = false;
    Sound *input = soundOpen(arguments[1]);
    if (input != NULL && soundHasChannel(input, channel)) {
        Frames reader = framesBegin(input, channel, size, hop);
        done = draw(&reader, arguments[2]);
        framesEnd(&reader);
    }
    if (done)
        soundNoteDamage(input);
    soundClose(input);
    return done ? 0 : 1;
}
