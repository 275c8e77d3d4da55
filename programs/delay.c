/* Finds by how much one sound lags another: two files, or the first two channels of one.
 *
 *     $ twice Front_Center.wav twice.wav "delay=480; noise=20" && delay twice.wav delay.png
 *     twice.wav: the sound, and beside it the same 480 samples later with noise at -20 dB
 *     delay.png: lag 480 samples, 10.000 ms, in 4 of 4 frames; peak 0.34, coefficient 1.00
 *
 * A positive lag means that the second sound is the later one. Each frame that is not silent gives the lag at which its
 * correlation with phase transform peaks; the answer is the commonest. Picture and peak are the mean of these, the
 * coefficient is the largest. Frames of four times the longest delay or more do best.
 */
#include "common/messages.h"
#include "common/options.h"
#include "common/plot.h"
#include "common/progress.h"
#include "common/sound.h"

#include <kett/kett.h>
#include <math.h>
#include <orva/orva.h>
#include <stdio.h>
#include <string.h>

typedef struct {
    sound *first, *second;
    int channel; /* of the second; the first has channel 1 */
    int32_t frame, lags;
    int64_t heard, *found; /* frames that are not silent; how many of them peak at each lag */
    float *x, *y, *r, *mean;
    double coefficient;
} search;

static bool compare(search *s)
{
    ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(s->frame, s->frame);
    while (xcorr != NULL && sound_read(s->first, 1, s->x, s->frame) > 0 &&
           sound_read(s->second, s->channel, s->y, s->frame) > 0) {
        progress_show(s->first->position, s->first->length);
        const double quieter = fmin(FVectorSumOfSquares(s->x, s->frame), FVectorSumOfSquares(s->y, s->frame));
        if (quieter < 1e-6 * s->frame) /* below -60 dB re full scale there is nothing to compare */
            continue;
        s->heard++;
        ORVA_XcorrPhatProcess(xcorr, s->y, s->x, s->r); /* the later one first */
        s->found[FVectorArgAbsMax(s->r, s->lags, NULL)]++;
        for (int32_t i = 0; i < s->lags; ++i)
            s->mean[i] += (s->r[i] - s->mean[i]) / (float) s->heard;
        s->coefficient = fmax(s->coefficient, ORVA_XcorrCoef(s->y, s->frame, s->x, s->frame, NULL));
    }
    progress_clear();
    ORVA_XcorrProcDestroy(xcorr);
    return s->heard > 0 || refuse("%s: no frame in which both sounds are heard", s->second->path);
}

static bool report(const search *s, const char *path)
{
    int32_t best = 0;
    for (int32_t i = 1; i < s->lags; ++i)
        best = s->found[i] > s->found[best] ? i : best;
    const double ms = 1000.0 / s->first->info.samplerate;
    const int32_t zero = s->frame - 1, lag = best - zero, reach = s->frame / 16;
    char subtitle[128];
    snprintf(subtitle, sizeof subtitle, "lag %d samples, %.3f ms", lag, lag * ms);
    plot *picture = plot_create(sound_name(s->second->path), subtitle, 1, 300, false);
    plot_panel(picture, 0, axis_linear((lag - reach) * ms, (lag + reach) * ms, "Lag (ms)"),
               axis_linear(-0.2, 1, "Correlation, phase transform"));
    plot_samples(picture, 0, -zero * ms, ms, s->mean, s->lags, NULL);
    const bool done = plot_save(picture, path);
    plot_destroy(picture);
    if (done)
        printf("%s: lag %d samples, %.3f ms, in %lld of %lld frames; peak %.2f, coefficient %.2f\n", path,
               lag, lag * ms, (long long) s->found[best], (long long) s->heard, (double) s->mean[best],
               s->coefficient);
    return done;
}

int main(int count, char **arguments)
{
    const int given = count > 3 && strstr(arguments[2], ".png") == NULL ? 4 : 3;
    search s = {.frame = 16384, .channel = given == 4 ? 1 : 2};
    const option key = {"frame", OPTION_INTEGER, &s.frame, 64, 1 << 24, "a whole number from 64 to 16777216"};
    const bool fits = count == given || count == given + 1;
    bool done = fits || refuse("usage: delay SOUND [SECOND] PICTURE.png [frame=N]");
    done = done && options_read(arguments[given], &key, 1);
    s.lags = 2 * s.frame - 1;
    KT_MEM *memory = KTMEM_CreateMemDescrEx("delay", 0, 0);
    s.x = KTMEM_NewFloatVector(memory, s.lags);
    s.y = KTMEM_NewFloatVector(memory, s.lags);
    s.r = KTMEM_NewFloatVector(memory, s.lags);
    s.mean = KTMEM_NewFloatVector(memory, s.lags);
    s.found = KTMEM_NewEx(memory, (uint64_t) s.lags * sizeof *s.found, 0);
    done = done && ((s.x && s.y && s.r && s.mean && s.found) || refuse("out of memory"));
    s.first = done ? sound_open(arguments[1]) : NULL;
    s.second = s.first != NULL ? sound_open(arguments[given - 2]) : NULL;
    done = s.second != NULL && sound_has_channel(s.second, s.channel) && compare(&s) &&
           report(&s, arguments[given - 1]);
    sound_close(s.first);
    sound_close(s.second);
    KTMEM_DisposeMemDescr(memory);
    return done ? 0 : 1;
}
