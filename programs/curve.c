/* Draws a calibration curve given at a few points, and the mean spectrum of a sound without and with it.
 *
 *     $ curve Front_Center.wav curve.png "points=[50 9; 200 2; 1000 0; 5000 -4; 10000 3; 20000 6]"
 *     curve.png: 6 points, gain -5.3 to 9.0 dB; it changes the level of the sound by 1.6 dB
 *
 * Each point is a frequency in Hz and a gain in dB. Through them runs a cubic spline over the logarithm of
 * the frequency, natural at both ends. Outside of them it would run away; here the gain at the end stays.
 */
#include "common/frames.h"
#include "common/messages.h"
#include "common/plot.h"
#include "common/points.h"
#include "common/spectrum.h"

#include <orva/orva.h>

#include <math.h>
#include <stdio.h>

enum { size = 4096, bins = size / 2 + 1 };

/* The points, and the spline through them: log10 Hz, dB, second derivatives. */
static Points given; /* Hz and dB */
static float x[mostPoints], y[mostPoints], y2[mostPoints];

/* At each bin, in dB along the spline and along straight lines, and the spline's as the spectrum takes it. */
static float spline[bins], lines[bins];
static float gain[bins + 3] __attribute__((aligned(16)));

static bool estimate(void)
{
    for (int32_t i = 0; i < given.count; ++i) {
        x[i] = (float) log10(given.x[i]);
        y[i] = (float) given.y[i];
        if (!(given.x[i] > 0) || (i > 0 && x[i] <= x[i - 1]))
            return refuse("configuration: the frequencies must be above 0, and not so near to each other");
    }
    ORVASPLINE_Estimate(x, y, given.count, 1e30f, 1e30f, y2);
    return true;
}

/* Reads both curves at every bin; step is the distance of two of them in Hz. */
static void interpolate(double step)
{
    for (int k = 0; k < bins; ++k) {
        const float at = fminf(fmaxf((float) log10(k * step), x[0]), x[given.count - 1]);
        spline[k] = ORVASPLINE_Interpolate(x, y, y2, given.count, at);
        lines[k] = ORVAINTERPOLATE_Linear(x, y, given.count, at);
        gain[k] = powf(10, spline[k] / 20);
    }
}

/* Puts the mean power of all frames into power. */
static void average(Sound *input, Spectrum *s)
{
    static double sum[bins];
    Frames reader = framesBegin(input, 1, size, size / 2);
    while (framesNext(&reader, s->frame)) {
        spectrumTransform(s);
        for (int k = 0; k < bins; ++k)
            sum[k] += (double) s->power[k];
    }
    for (int k = 0; k < bins; ++k)
        s->power[k] = (float) (sum[k] / (double) reader.count);
    framesEnd(&reader);
}

/* By how much the curve changes the level of a sound of this power. */
static double levelChange(const float *power)
{
    double before = 0;
    double after = 0;
    for (int k = 0; k < bins; ++k) {
        before += (double) power[k];
        after += (double) (power[k] * gain[k] * gain[k]);
    }
    return before > 0 ? 10 * log10(after / before) : 0;
}

static bool draw(const Sound *input, Spectrum *s, double step, float least, float most, const char *path)
{
    const Axis frequency = axisFrequency(20, step * size / 2, true);
    Plot *picture = plotCreate(soundName(input->path), "Mean spectrum and calibration", 2, 240, false);
    plotPanel(picture, 0, frequency, axisLinear(floorf(least) - 1, ceilf(most) + 1, "Gain (dB)"));
    plotSamples(picture, 0, 0, step, spline, bins, "spline");
    plotSamples(picture, 0, 0, step, lines, bins, "straight lines");
    plotPoints(picture, 0, given.x, given.y, given.count, "points");

    plotPanel(picture, 1, frequency, axisLinear(-120, 0, "Level (dB re full-scale sine)"));
    spectrumMeasure(s, NULL, 300);
    plotSamples(picture, 1, 0, step, s->levels, bins, "as recorded");
    spectrumMeasure(s, gain, 300);
    plotSamples(picture, 1, 0, step, s->levels, bins, "calibrated");
    const bool done = plotSave(picture, path);
    plotDestroy(picture);
    return done;
}

static bool calibrate(Sound *input, Spectrum *s, const char *path)
{
    const double step = (double) input->info.samplerate / size;
    average(input, s);
    interpolate(step);
    float least = spline[0];
    float most = spline[0];
    for (int k = 1; k < bins; ++k) {
        least = fminf(least, spline[k]);
        most = fmaxf(most, spline[k]);
    }
    if (!draw(input, s, step, least, most, path))
        return false;
    printf("%s: %d points, gain %.1f to %.1f dB; it changes the level of the sound by %.1f dB\n", path,
           given.count, (double) least, (double) most, levelChange(s->power));
    return true;
}

int main(int count, char **arguments)
{
    if (count != 4) {
        refuse("usage: curve SOUND PICTURE.png \"points=[HZ DB; HZ DB; ...]\"");
        return 1;
    }
    if (!pointsRead(arguments[3], &given) || !estimate())
        return 1;

    Sound *input = soundOpen(arguments[1]);
    if (input == NULL)
        return 1;
    Spectrum s;
    const bool done =
        spectrumBegin(&s, ORVA_GetWindowType("Hanning"), size) && calibrate(input, &s, arguments[2]);
    if (done)
        soundNoteDamage(input);
    spectrumEnd(&s);
    soundClose(input);
    return done ? 0 : 1;
}
