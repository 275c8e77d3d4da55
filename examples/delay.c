/* Finds by how much one sound lags another: two files, or the first two channels of one.
 *
 *     $ twice Front_Center.wav twice.wav "delay=480; noise=20"
 *     twice.wav: the sound, and beside it the same 480 samples later with noise at -20 dB
 *     $ delay twice.wav delay.png
 *     delay.png: lag 480 samples, 10.000 ms, in 3 of 4 frames
 *
 * A positive lag means that the second sound is the later one. Each frame that is not silent gives the lag at which its
 * correlation with phase transform peaks; the answer is the commonest. The picture shows the mean of these correlations.
 * Frames of four times the longest delay or more do best.
 */
#include "common/memory.h"
#include "common/messages.h"
#include "common/options.h"
#include "common/plot.h"
#include "common/progress.h"
#include "common/sound.h"

#include <kett/KTvector.h>
#include <math.h>
#include <orva/orva.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef struct {
    sound *first, *second;
    int channel; /* of the second; the first has channel 1 */
    int32_t frame, lags;
    int64_t heard, *found; /* frames that are not silent, and how many of them peak at each lag */
    float *correlation;    /* their mean */
    double coefficient;    /* their largest */
} search;

/* Reads the next frame of both sounds; false where either has ended. */
static bool next_pair(search *s, float *x, float *y)
{
    progress_show(s->first->position, s->first->length);
    return sound_read(s->first, 1, x, s->frame) > 0 && sound_read(s->second, s->channel, y, s->frame) > 0;
}

/* Below -60 dB re full scale there is nothing to compare. */
static bool is_silent(const float *samples, int32_t size)
{
    return FVectorSumOfSquares(samples, size) < 1e-6 * size;
}

static bool compare(search *s)
{
    float *x = allocate((size_t) s->frame, sizeof *x), *y = allocate((size_t) s->frame, sizeof *y);
    float *r = allocate((size_t) s->lags, sizeof *r);
    ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(s->frame, s->frame);
    bool done = xcorr != NULL || refuse("out of memory");
    while (done && next_pair(s, x, y)) {
        if (is_silent(x, s->frame) || is_silent(y, s->frame))
            continue;
        s->heard++;
        ORVA_XcorrPhatProcess(xcorr, y, x, r); /* the later one first */
        s->found[FVectorArgAbsMax(r, s->lags, NULL)]++;
        for (int32_t i = 0; i < s->lags; ++i)
            s->correlation[i] += (r[i] - s->correlation[i]) / (float) s->heard;
        s->coefficient = fmax(s->coefficient, ORVA_XcorrCoef(y, s->frame, x, s->frame, NULL));
    }
    progress_clear();
    ORVA_XcorrProcDestroy(xcorr);
    free(x);
    free(y);
    free(r);
    return done && (s->heard > 0 || refuse("%s: no frame in which both sounds are heard", s->second->path));
}

static bool report(const search *s, const char *path)
{
    int32_t best = 0;
    for (int32_t i = 1; i < s->lags; ++i)
        best = s->found[i] > s->found[best] ? i : best;
    const int32_t zero = s->frame - 1, lag = best - zero;
    const double ms = 1000.0 / s->first->info.samplerate, reach = s->frame / 16;
    char subtitle[160];
    snprintf(subtitle, sizeof subtitle, "lag %d samples, %.3f ms; peak %.2f, coefficient %.2f", lag, lag * ms,
             (double) s->correlation[best], s->coefficient);
    plot *picture = plot_create(sound_name(s->second->path), subtitle, 1, 300, false);
    plot_panel(picture, 0, axis_linear((lag - reach) * ms, (lag + reach) * ms, "Lag (ms)"),
               axis_linear(-0.2, 1, "Correlation, phase transform"));
    plot_samples(picture, 0, -zero * ms, ms, s->correlation, s->lags, NULL);
    plot_cursor(picture, 0, lag * ms, "found");
    const bool done = plot_save(picture, path);
    plot_destroy(picture);
    if (done)
        printf("%s: lag %d samples, %.3f ms, in %lld of %lld frames\n", path, lag, lag * ms,
               (long long) s->found[best], (long long) s->heard);
    return done;
}

int main(int count, char **arguments)
{
    int32_t frame = 16384;
    const option options[] = {
        {"frame", OPTION_INTEGER, &frame, 64, 1 << 24, "a whole number from 64 to 16777216"}};
    const bool two = count > 3 && strstr(arguments[2], ".png") == NULL;
    const int given = two ? 4 : 3;
    bool done = (count == given || count == given + 1 ||
                 refuse("usage: delay SOUND [SECOND] PICTURE.png [frame=N]")) &&
                options_read(arguments[given], options, 1);
    search s = {.frame = frame, .lags = 2 * frame - 1, .channel = two ? 1 : 2};
    s.first = done ? sound_open(arguments[1]) : NULL;
    s.second = s.first != NULL ? sound_open(arguments[two ? 2 : 1]) : NULL;
    done = s.second != NULL && sound_has_channel(s.second, s.channel) &&
           (s.first->info.samplerate == s.second->info.samplerate ||
            refuse("%s: has another sampling rate", arguments[2]));
    s.found = allocate((size_t) s.lags, sizeof *s.found);
    s.correlation = allocate((size_t) s.lags, sizeof *s.correlation);
    done = done && compare(&s) && report(&s, arguments[given - 1]);
    sound_close(s.first);
    sound_close(s.second);
    free(s.found);
    free(s.correlation);
    return done ? 0 : 1;
}
