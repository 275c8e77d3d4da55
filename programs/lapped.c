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
#include <math.h>
#include <orva/orva.h>
#include <stdio.h>
#include <string.h>

enum { mostBlock = 65536 };
static float window[2 * (mostBlock + 1)], real[mostBlock], imag[mostBlock], last[mostBlock];
static float before[mostBlock], behind[mostBlock]; /* the gate; levels in dB */

typedef struct {
    ORVA_FMCLT *fmclt;                 /* serves all channels in turn */
    int32_t M;                         /* samples, and coefficients, of a block */
    float least;                       /* level that passes, dB */
    double length, passed, all, error; /* samples of the sound; coefficients; sum of squares */
    comparison picture;
} lapping;

/* Zeroes what is below the gate of the block that is centred on a sample. */
static void gate(lapping *l, double middle)
{
    const double sine = sqrt(8.0 * l->M) / acos(-1.0); /* the coefficient of one of full scale */
    for (int32_t k = 0; k < l->M; ++k) {
        before[k] = (float) (20 * log10(hypot((double) real[k], (double) imag[k]) / sine));
        const bool passes = before[k] >= l->least;
        l->passed += passes;
        behind[k] = passes ? before[k] : -INFINITY;
        real[k] = passes ? real[k] : 0;
        imag[k] = passes ? imag[k] : 0;
    }
    l->all += l->M;
    const double left = (middle - 0.5 * l->M) / l->length, right = (middle + 0.5 * l->M) / l->length;
    raster_add(l->picture.before, left, right, before, l->M);
    raster_add(l->picture.after, left, right, behind, l->M);
}

/* Puts the gated block before it in the place of a block. */
static void lap(void *context, block *one)
{
    lapping *l = context;
    const int32_t M = l->M;
    float *history = one->state, *plain = history + M, *gated = plain + M;
    memcpy(last, history, (size_t) M * sizeof *last);
    ORVA_FMCLTDirect(l->fmclt, real, imag, one->samples, history, window);
    ORVA_FMCLTInverse(l->fmclt, real, imag, one->samples, plain, window);
    for (int32_t i = 0; i < M; ++i)
        last[i] -= one->samples[i];
    l->error += FVectorSumOfSquares(last, M);
    gate(l, (double) one->start);
    ORVA_FMCLTInverse(l->fmclt, real, imag, one->samples, gated, window);
}

int main(int count, char **arguments)
{
    lapping l = {.M = 512, .least = -60};
    const option options[] = {{"block", OPTION_INTEGER, &l.M, 1, mostBlock, "a whole number from 1 to 65536"},
                              {"gate", OPTION_REAL, &l.least, -300, 300, "a number from -300 to 300"}};
    const bool ready = count == 4 || count == 5 ||
                       refuse("usage: lapped SOUND OUTPUT.wav PICTURE.png [\"block=N; gate=DB\"]");
    sound *input = ready && options_read(arguments[4], options, 2) ? sound_open(arguments[1]) : NULL;
    const int channels = input ? input->info.channels : 0, rate = input ? input->info.samplerate : 0;
    sound_output *output = input ? sound_create(arguments[2], input, rate, channels) : NULL;
    bool done = output != NULL;
    if (done) {
        l.length = (double) input->length;
        l.picture = comparison_begin(sound_name(arguments[1]), "Levels of the lapped coefficients",
                                     l.length / rate, rate / 2.0);
        l.fmclt = ORVA_FMCLTProcCreate(l.M);
        ORVA_FMCLTFreqWindow(window, l.M);
        const block_process process = {l.M, l.M, 3 * (int64_t) l.M, lap, &l};
        done = (l.fmclt != NULL || refuse("out of memory")) && blocks_run(input, output, &process) &&
               comparison_save(&l.picture, 100, "Before the gate (dB)", "Behind the gate (dB)", arguments[3]);
        done = sound_finish(output, done);
        ORVA_FMCLTProcDestroy(l.fmclt);
        comparison_destroy(&l.picture);
    }
    if (done) {
        sound_note_damage(input);
        printf("%s: %.2f s, through the gate: %.1f %% of the coefficients; error without it: %.0f dB\n",
               arguments[2], l.length / rate, 100 * l.passed / l.all, 10 * log10(2 * l.error / l.all));
    }
    sound_close(input);
    return done ? 0 : 1;
}
