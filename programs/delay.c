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
#include <orva/orva.h>

#include <math.h>
#include <stdio.h>
#include <string.h>

typedef struct {
    Sound *first;
    Sound *second;
    int channel;    /* of the second; the first has channel 1 */
    int32_t frame;  /* samples that are compared at a time */
    int32_t lags;   /* that a frame has: lag t stands at t + frame - 1 */
    int64_t heard;  /* frames that are not silent */
    int64_t *found; /* how many of them peak at each lag */
    float *x;       /* a frame of the first sound */
    float *y;       /* and of the second */
    float *r;       /* their correlation */
    float *mean;    /* the mean of it */
    double coefficient;
} Search;

static bool makeRoom(Search *s, KT_MEM *memory)
{
    s->lags = 2 * s->frame - 1;
    s->x = KTMEM_NewFloatVector(memory, s->frame);
    s->y = KTMEM_NewFloatVector(memory, s->frame);
    s->r = KTMEM_NewFloatVector(memory, s->lags);
    s->mean = KTMEM_NewFloatVector(memory, s->lags);
    s->found = KTMEM_NewEx(memory, (uint64_t) s->lags * sizeof *s->found, 0);
    if (s->x == NULL || s->y == NULL || s->r == NULL || s->mean == NULL || s->found == NULL)
        return refuse("out of memory");
    return true;
}

static bool readFrames(Search *s)
{
    return soundRead(s->first, 1, s->x, s->frame) > 0 && soundRead(s->second, s->channel, s->y, s->frame) > 0;
}

/* Below -60 dB re full scale there is nothing to compare. */
static bool bothAreHeard(const Search *s)
{
    const double least = 1e-6 * s->frame;
    return FVectorSumOfSquares(s->x, s->frame) >= least && FVectorSumOfSquares(s->y, s->frame) >= least;
}

static void compareFrames(Search *s, ORVA_XCORR *xcorr)
{
    ++s->heard;
    ORVA_XcorrPhatProcess(xcorr, s->y, s->x, s->r); /* the later one first */
    ++s->found[FVectorArgAbsMax(s->r, s->lags, NULL)];
    for (int32_t i = 0; i < s->lags; ++i)
        s->mean[i] += (s->r[i] - s->mean[i]) / (float) s->heard;
    s->coefficient = fmax(s->coefficient, ORVA_XcorrCoef(s->y, s->frame, s->x, s->frame, NULL));
}

static bool compare(Search *s)
{
    ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(s->frame, s->frame);
    if (xcorr == NULL)
        return refuse("out of memory");
    while (readFrames(s)) {
        progressShow(s->first->position, s->first->length);
        if (bothAreHeard(s))
            compareFrames(s, xcorr);
    }
    progressClear();
    ORVA_XcorrProcDestroy(xcorr);
    return s->heard > 0 || refuse("%s: no frame in which both sounds are heard", s->second->path);
}

static int32_t commonestLag(const Search *s)
{
    int32_t best = 0;
    for (int32_t i = 1; i < s->lags; ++i)
        if (s->found[i] > s->found[best])
            best = i;
    return best;
}

static bool report(const Search *s, const char *path)
{
    const double ms = 1000.0 / s->first->info.samplerate;
    const int32_t best = commonestLag(s);
    const int32_t zero = s->frame - 1;
    const int32_t lag = best - zero;
    const int32_t reach = s->frame / 16;
    char subtitle[128];
    snprintf(subtitle, sizeof subtitle, "lag %d samples, %.3f ms", lag, lag * ms);

    Plot *picture = plotCreate(soundName(s->second->path), subtitle, 1, 300, false);
    plotPanel(picture, 0, axisLinear((lag - reach) * ms, (lag + reach) * ms, "Lag (ms)"),
              axisLinear(-0.2, 1, "Correlation, phase transform"));
    plotSamples(picture, 0, -zero * ms, ms, s->mean, s->lags, NULL);
    const bool done = plotSave(picture, path);
    plotDestroy(picture);
    if (done)
        printf("%s: lag %d samples, %.3f ms, in %lld of %lld frames; peak %.2f, coefficient %.2f\n", path,
               lag, lag * ms, (long long) s->found[best], (long long) s->heard, (double) s->mean[best],
               s->coefficient);
    return done;
}

/* Compares two files, or two channels of the same one, and draws the result. */
static bool run(Search *s, const char *first, const char *second, const char *picture)
{
    s->first = soundOpen(first);
    if (s->first == NULL)
        return false;
    s->second = soundOpen(second);
    if (s->second == NULL)
        return false;
    return soundHasChannel(s->second, s->channel) && compare(s) && report(s, picture);
}

int main(int count, char **arguments)
{
    Search s = {.frame = 16384};
    const Option key = {"frame", integerOption, &s.frame, 64, 1 << 24, "a whole number from 64 to 16777216"};
    const bool twoFiles = count > 3 && strstr(arguments[2], ".png") == NULL;
    const int files = twoFiles ? 2 : 1;
    const int config = files + 2; /* its place among the arguments, null where it is not given */
    if (count != config && count != config + 1) {
        refuse("usage: delay SOUND [SECOND] PICTURE.png [frame=N]");
        return 1;
    }
    if (!optionsRead(arguments[config], &key, 1))
        return 1;

    s.channel = twoFiles ? 1 : 2;
    KT_MEM *memory = KTMEM_CreateMemDescrEx("delay", 0, 0);
    const bool done = makeRoom(&s, memory) && run(&s, arguments[1], arguments[files], arguments[files + 1]);
    soundClose(s.first);
    soundClose(s.second);
    KTMEM_DisposeMemDescr(memory);
    return done ? 0 : 1;
}
