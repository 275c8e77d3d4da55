#include "envelope.h"

#include "memory.h"

#include <math.h>
#include <stdlib.h>

static void doubleStretches(Envelope *outline)
{
    for (int i = 0; i < mostStretches / 2; ++i) {
        outline->least[i] = fminf(outline->least[2 * i], outline->least[2 * i + 1]);
        outline->most[i] = fmaxf(outline->most[2 * i], outline->most[2 * i + 1]);
    }
    ++outline->doublings;
}

void envelopeAdd(Envelope *outline, const float *samples, int64_t frames, int channels)
{
    for (; frames > 0; --frames, ++outline->total) {
        if (outline->total >> outline->doublings == mostStretches)
            doubleStretches(outline);
        const int64_t stretch = outline->total >> outline->doublings;
        float *least = &outline->least[stretch], *most = &outline->most[stretch];
        if (stretch << outline->doublings == outline->total)
            *least = *most = *samples;
        for (int channel = 0; channel < channels; ++channel, ++samples) {
            *least = fminf(*least, *samples);
            *most = fmaxf(*most, *samples);
        }
    }
}

static int stretches(const Envelope *outline)
{
    const int64_t width = (int64_t) 1 << outline->doublings;
    return (int) ((outline->total + width - 1) / width);
}

static double peak(const Envelope *outline)
{
    float most = 0;
    for (int i = 0; i < stretches(outline); ++i)
        most = fmaxf(most, fmaxf(outline->most[i], -outline->least[i]));
    return most > 0 ? most : 1;
}

void envelopeDraw(const Envelope *outline, Plot *picture, int panel, int rate, double seconds,
                  const char *label)
{
    const int count = stretches(outline);
    const double width = ldexp(1.0, outline->doublings) / rate;
    const double top = peak(outline);
    double *x = allocate((size_t) count * 2, sizeof *x);
    double *y = allocate((size_t) count * 2, sizeof *y);
    for (int i = 0; i < count; ++i) {
        x[2 * i] = x[2 * i + 1] = i * width;
        y[2 * i] = outline->least[i];
        y[2 * i + 1] = outline->most[i];
    }
    plotPanel(picture, panel, axisTime(seconds), axisLinear(-top, top, label));
    plotCurve(picture, panel, x, y, 2 * (int64_t) count, NULL);
    free(x);
    free(y);
}
