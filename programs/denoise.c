/* Sends a sound through the noise suppressor and draws spectrograms of what goes in and what comes out.
 *
 *     $ denoise Noise.wav denoised.wav denoised.png "policy=3"
 *     denoised.wav: 1.41 s at 16000 Hz, the level changed by -0.004 dB
 *
 * 8000 and 16000 Hz stay; every other rate is resampled to 16000 Hz first. "--rate 8000" or another of the
 * suppressor's rates in front asks for that one; at 32000 silence comes out.
 */
#include "common/blocks.h"
#include "common/comparison.h"
#include "common/conversion.h"
#include "common/messages.h"
#include "common/options.h"
#include "common/spectrum.h"

#include <kett/KTvector.h>
#include <math.h>
#include <orva/orva.h>
#include <stdio.h>
#include <string.h>

enum { mostChannels = 1024, range = 100 };

typedef struct {
    ORVA_NOISESUP *each[mostChannels];
    int32_t frame;
    double length, in, out; /* frames of the sound; sums of squares */
    spectrum present;       /* of four frames, in whose middle they speak for one */
    comparison picture;
} suppression;

static void look(suppression *s, float *past, const block *one, raster *levels)
{
    const double end = (double) (one->start + s->frame), left = end - 2.5 * s->frame;
    const double right = end < s->length ? left + s->frame : s->length;
    spectrum_follow(&s->present, past, one->samples, s->frame);
    spectrum_measure(&s->present, NULL, range);
    raster_add(levels, left / s->length, right / s->length, s->present.levels, s->present.bins);
}

static void suppress(void *context, block *one)
{
    suppression *s = context;
    look(s, one->state, one, s->picture.before);
    s->in += FVectorSumOfSquares(one->samples, s->frame);
    ORVA_DoNoiseSup(s->each[one->channel], one->samples, one->samples);
    s->out += FVectorSumOfSquares(one->samples, s->frame);
    look(s, one->state + s->present.size, one, s->picture.after);
}

static bool run(sound *input, int32_t policy, const char *wav, const char *png)
{
    const int rate = input->info.samplerate, channels = input->info.channels;
    suppression s = {.frame = rate / 100, .length = (double) input->length};
    bool done = spectrum_begin(&s.present, ORVA_GetWindowType("Hanning"), 4 * s.frame);
    for (int c = 0; done && c < channels; ++c)
        done = (s.each[c] = ORVA_CreateNoiseSupEx(rate, policy)) != NULL || refuse("out of memory");
    s.picture = comparison_begin(sound_name(input->path), "Noise suppressor", s.length / rate, rate / 2.0);
    sound_output *output = done ? sound_create(wav, input, rate, channels) : NULL;
    const int64_t delay = s.frame * 3 / 5; /* the suppressor's, 6 ms */
    const block_process process = {s.frame, delay, 2 * s.present.size, suppress, &s};
    done = output != NULL && blocks_run(input, output, &process) &&
           comparison_save(&s.picture, range, "What goes in (dB)", "What comes out (dB)", png);
    if ((done = sound_finish(output, done)))
        printf("%s: %.2f s at %d Hz, the level changed by %.3f dB\n", wav, s.length / rate, rate,
               s.in > 0 ? 10 * log10(s.out / s.in) : 0);
    for (int c = 0; c < channels; ++c)
        ORVA_DestroyNoiseSup(s.each[c]);
    comparison_destroy(&s.picture);
    spectrum_end(&s.present);
    return done;
}

int main(int count, char **arguments)
{
    int32_t policy = 2;
    const option keys = {"policy", OPTION_INTEGER, &policy, 0, 3, "a whole number from 0 to 3"};
    const bool asked = count > 2 && strcmp(arguments[1], "--rate") == 0;
    int rate = asked ? options_number(arguments[2], 32000) : 16000;
    arguments += asked ? 2 : 0, count -= asked ? 2 : 0;
    const bool ready =
        (count == 4 || count == 5 ||
         refuse("usage: denoise [--rate HZ] SOUND OUTPUT.wav PICTURE.png [policy=N]")) &&
        (rate == 8000 || rate == 16000 || rate == 32000 || refuse("rate: not 8000, 16000 or 32000")) &&
        options_read(arguments[4], &keys, 1);
    sound *given = ready ? sound_open(arguments[1]) : NULL;
    rate = !asked && given != NULL && given->info.samplerate == 8000 ? 8000 : rate;
    if (given != NULL && rate == 32000)
        note("at 32000 Hz silence comes out");
    sound *input = given != NULL && given->info.samplerate != rate ? conversion_of(given, rate) : given;
    const bool done = input != NULL && run(input, policy, arguments[2], arguments[3]);
    if (done)
        sound_note_damage(given);
    if (input != given)
        sound_close(input);
    sound_close(given);
    return done ? 0 : 1;
}
