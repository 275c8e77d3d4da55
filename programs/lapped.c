/* Silences what is faint in a sound, each coefficient of its lapped transform by itself (a spectral gate),
 * and measures how well the transform without the gate gives the sound back.
 *
 *     $ lapped Front_Center.wav gated.wav gated.png "block=512; gate=-60"
 *     gated.wav: 1.43 s, through the gate: 7.0 % of the coefficients; error without it: -156 dB
 *
 * A sine of full scale has 0 dB. All of a sound comes back where 4 divides the length of a block, else an
 * error of the highest frequencies stays. The picture shows the loudest coefficients of all channels.
 */
#include "common/blocks.h"
#include "common/comparison.h"
#include "common/messages.h"
#include "common/options.h"

#include <kett/KTvector.h>
#include <orva/orva.h>

#include <math.h>
#include <stdio.h>
#include <string.h>

enum { mostBlock = 65536 };

static float window[2 * (mostBlock + 1)];
static float real[mostBlock], imag[mostBlock];
static float last[mostBlock];                     /* the block before the present one */
static float before[mostBlock], after[mostBlock]; /* the gate; levels in dB */

typedef struct {
    ORVA_FMCLT *fmclt;  /* serves all channels in turn */
    int32_t M;          /* samples, and coefficients, of a block */
    float least;        /* level that passes, dB */
    double length;      /* samples of the sound */
    double passed, all; /* coefficients */
    double error;       /* sum of squares, without the gate */
    Comparison picture;
} Lapping;

/* Zeroes what is below the gate of the block that is centred on a sample. */
static void gate(Lapping *l, double middle)
{
    const double sine = sqrt(8.0 * l->M) / acos(-1.0); /* the coefficient of one of full scale */
    for (int32_t k = 0; k < l->M; ++k) {
        before[k] = (float) (20 * log10(hypot((double) real[k], (double) imag[k]) / sine));
        const bool passes = before[k] >= l->least;
        l->passed += passes;
        after[k] = passes ? before[k] : -INFINITY;
        real[k] = passes ? real[k] : 0;
        imag[k] = passes ? imag[k] : 0;
    }
    l->all += l->M;
    const double left = (middle - 0.5 * l->M) / l->length;
    const double right = (middle + 0.5 * l->M) / l->length;
    rasterAdd(l->picture.before, left, right, before, l->M);
    rasterAdd(l->picture.after, left, right, after, l->M);
}

/* Puts the gated block before it in the place of a block. */
static void lap(void *context, Block *one)
{
    Lapping *l = context;
    const int32_t M = l->M;
    float *history = one->state; /* of the way there, and of both ways back, without the gate and with it */
    float *plain = history + M;
    float *gated = plain + M;
    memcpy(last, history, (size_t) M * sizeof *last);
    ORVA_FMCLTDirect(l->fmclt, real, imag, one->samples, history, window);
    ORVA_FMCLTInverse(l->fmclt, real, imag, one->samples, plain, window);
    for (int32_t i = 0; i < M; ++i)
        last[i] -= one->samples[i];
    l->error += FVectorSumOfSquares(last, M);
    gate(l, (double) one->start);
    ORVA_FMCLTInverse(l->fmclt, real, imag, one->samples, gated, window);
}

static bool lapAll(Lapping *l, Sound *input, const char *wav, const char *png)
{
    SoundOutput *output = soundCreate(wav, input, input->info.samplerate, input->info.channels);
    if (output == NULL)
        return false;
    const BlockProcess process = {l->M, l->M, 3 * (int64_t) l->M, lap, l};
    const bool done = blocksRun(input, output, &process) &&
                      comparisonSave(&l->picture, 100, "Before the gate (dB)", "Behind the gate (dB)", png);
    return soundFinish(output, done);
}

static bool run(Lapping *l, Sound *input, const char *wav, const char *png)
{
    const int rate = input->info.samplerate;
    l->length = (double) input->length;
    l->fmclt = ORVA_FMCLTProcCreate(l->M);
    if (l->fmclt == NULL)
        return refuse("out of memory");
    ORVA_FMCLTFreqWindow(window, l->M);
    l->picture = comparisonBegin(soundName(input->path), "Levels of the lapped coefficients",
                                 l->length / rate, rate / 2.0);
    const bool done = lapAll(l, input, wav, png);
    if (done) {
        soundNoteDamage(input);
        printf("%s: %.2f s, through the gate: %.1f %% of the coefficients; error without it: %.0f dB\n", wav,
               l->length / rate, 100 * l->passed / l->all, 10 * log10(2 * l->error / l->all));
    }
    comparisonDestroy(&l->picture);
    ORVA_FMCLTProcDestroy(l->fmclt);
    return done;
}

int main(int count, char **arguments)
{
    Lapping l = {.M = 512, .least = -60};
    const Option options[] = {{"block", integerOption, &l.M, 1, mostBlock, "a whole number from 1 to 65536"},
                              {"gate", realOption, &l.least, -300, 300, "a number from -300 to 300"}};
    if (count != 4 && count != 5) {
        refuse("usage: lapped SOUND OUTPUT.wav PICTURE.png [\"block=N; gate=DB\"]");
        return 1;
    }
    if (!optionsRead(arguments[4], options, sizeof options / sizeof *options))
        return 1;

    Sound *input = soundOpen(arguments[1]);
    const bool done = input != NULL && run(&l, input, arguments[2], arguments[3]);
    soundClose(input);
    return done ? 0 : 1;
}
