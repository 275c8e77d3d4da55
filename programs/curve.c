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

#include <math.h>
#include <orva/orva.h>
#include <stdio.h>

enum { size = 4096, bins = size / 2 + 1 };
static points given;                                          /* Hz and dB */
static float x[POINTS_MOST], y[POINTS_MOST], y2[POINTS_MOST]; /* log10 Hz, dB, second derivatives */
static float spline[bins], lines[bins];                       /* dB at each bin */
static float gain[bins + 3] __attribute__((aligned(16)));     /* the spline's, as the spectrum takes it */

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

/* Puts the mean power of all frames into power. */
static void average(sound *input, spectrum *s)
{
    static double sum[bins];
    frames reader = frames_begin(input, 1, size, size / 2);
    while (frames_next(&reader, s->frame)) {
        spectrum_transform(s);
        for (int k = 0; k < bins; ++k)
            sum[k] += (double) s->power[k];
    }
    for (int k = 0; k < bins; ++k)
        s->power[k] = (float) (sum[k] / (double) reader.count);
    frames_end(&reader);
}

static bool draw(sound *input, spectrum *s, const char *path)
{
    const double step = (double) input->info.samplerate / size;
    float least = INFINITY, most = -INFINITY;
    double before = 0, after = 0;
    average(input, s);
    for (int k = 0; k < bins; ++k) {
        const float at = fminf(fmaxf((float) log10(k * step), x[0]), x[given.count - 1]);
        spline[k] = ORVASPLINE_Interpolate(x, y, y2, given.count, at);
        lines[k] = ORVAINTERPOLATE_Linear(x, y, given.count, at);
        gain[k] = powf(10, spline[k] / 20);
        least = fminf(least, spline[k]), most = fmaxf(most, spline[k]);
        before += (double) s->power[k];
        after += (double) (s->power[k] * gain[k] * gain[k]);
    }
    const axis frequency = axis_frequency(20, step * size / 2, true);
    plot *picture = plot_create(sound_name(input->path), "Mean spectrum and calibration", 2, 240, false);
    plot_panel(picture, 0, frequency, axis_linear(floorf(least) - 1, ceilf(most) + 1, "Gain (dB)"));
    plot_samples(picture, 0, 0, step, spline, bins, "spline");
    plot_samples(picture, 0, 0, step, lines, bins, "straight lines");
    plot_points(picture, 0, given.x, given.y, given.count, "points");
    plot_panel(picture, 1, frequency, axis_linear(-120, 0, "Level (dB re full-scale sine)"));
    spectrum_measure(s, NULL, 300);
    plot_samples(picture, 1, 0, step, s->levels, bins, "as recorded");
    spectrum_measure(s, gain, 300);
    plot_samples(picture, 1, 0, step, s->levels, bins, "calibrated");
    const bool done = plot_save(picture, path);
    plot_destroy(picture);
    if (done)
        printf("%s: %d points, gain %.1f to %.1f dB; it changes the level of the sound by %.1f dB\n", path,
               given.count, (double) least, (double) most, before > 0 ? 10 * log10(after / before) : 0);
    return done;
}

int main(int count, char **arguments)
{
    spectrum s = {0};
    bool done = (count == 4 || refuse("usage: curve SOUND PICTURE.png \"points=[HZ DB; HZ DB; ...]\"")) &&
                points_read(arguments[3], &given) && estimate();
    sound *input = done ? sound_open(arguments[1]) : NULL;
    done = input != NULL && spectrum_begin(&s, ORVA_GetWindowType("Hanning"), size) &&
           draw(input, &s, arguments[2]);
    if (done)
        sound_note_damage(input);
    spectrum_end(&s);
    sound_close(input);
    return done ? 0 : 1;
}
