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
#include <orva/orva.h>

#include <math.h>
#include <stdio.h>
#include <string.h>

enum { mostChannels = 1024, range = 100 };

typedef struct {
    ORVA_NOISESUP *each[mostChannels];
    int32_t frame;
    double length;    /* frames of the sound */
    double in, out;   /* sums of squares */
    Spectrum present; /* of four frames, in whose middle they speak for one */
    Comparison picture;
} Suppression;

static void look(Suppression *s, float *past, const Block *one, Raster *levels)
{
    const double end = (double) (one->start + s->frame);
    const double left = end - 2.5 * s->frame;
    const double right = end < s->length ? left + s->frame : s->length;
    spectrumFollow(&s->present, past, one->samples, s->frame);
    spectrumMeasure(&s->present, NULL, range);
    rasterAdd(levels, left / s->length, right / s->length, s->present.levels, s->present.bins);
}

static void suppress(void *context, Block *one)
{
    Suppression *s = context;
    look(s, one->state, one, s->picture.before);
    s->in += FVectorSumOfSquares(one->samples, s->frame);
    ORVA_DoNoiseSup(s->each[one->channel], one->samples, one->samples);
    s->out += FVectorSumOfSquares(one->samples, s->frame);
    look(s, one->state + s->present.size, one, s->picture.after);
}

static bool makeSuppressors(Suppression *s, int rate, int channels, int32_t policy)
{
    for (int c = 0; c < channels; ++c) {
        s->each[c] = ORVA_CreateNoiseSupEx(rate, policy);
        if (s->each[c] == NULL)
            return refuse("out of memory");
    }
    return true;
}

static bool suppressAll(Suppression *s, Sound *input, const char *wav, const char *png)
{
    SoundOutput *output = soundCreate(wav, input, input->info.samplerate, input->info.channels);
    if (output == NULL)
        return false;
    const int64_t delay = s->frame * 3 / 5; /* the suppressor's, 6 ms */
    const BlockProcess process = {s->frame, delay, 2 * s->present.size, suppress, s};
    const bool done = blocksRun(input, output, &process) &&
                      comparisonSave(&s->picture, range, "What goes in (dB)", "What comes out (dB)", png);
    return soundFinish(output, done);
}

static bool run(Sound *input, int32_t policy, const char *wav, const char *png)
{
    const int rate = input->info.samplerate;
    const int channels = input->info.channels;
    Suppression s = {.frame = rate / 100, .length = (double) input->length};
    s.picture = comparisonBegin(soundName(input->path), "Noise suppressor", s.length / rate, rate / 2.0);
    const bool done = spectrumBegin(&s.present, ORVA_GetWindowType("Hanning"), 4 * s.frame) &&
                      makeSuppressors(&s, rate, channels, policy) && suppressAll(&s, input, wav, png);
    if (done)
        printf("%s: %.2f s at %d Hz, the level changed by %.3f dB\n", wav, s.length / rate, rate,
               s.in > 0 ? 10 * log10(s.out / s.in) : 0);
    for (int c = 0; c < channels; ++c)
        ORVA_DestroyNoiseSup(s.each[c]);
    comparisonDestroy(&s.picture);
    spectrumEnd(&s.present);
    return done;
}

/* At the rate asked for, or, where it is 0, at one that suits the sound. */
static bool runAt(int rate, Sound *given, int32_t policy, const char *wav, const char *png)
{
    if (rate == 0)
        rate = given->info.samplerate == 8000 ? 8000 : 16000;
    if (rate == 32000)
        note("at 32000 Hz silence comes out");
    if (given->info.samplerate == rate)
        return run(given, policy, wav, png);
    Sound *converted = conversionOf(given, rate);
    const bool done = converted != NULL && run(converted, policy, wav, png);
    soundClose(converted);
    return done;
}

int main(int count, char **arguments)
{
    int32_t policy = 2;
    const Option keys = {"policy", integerOption, &policy, 0, 3, "a whole number from 0 to 3"};
    const char *asked = NULL; /* the rate, as text */
    if (count > 2 && strcmp(arguments[1], "--rate") == 0) {
        asked = arguments[2];
        arguments += 2;
        count -= 2;
    }
    if (count != 4 && count != 5) {
        refuse("usage: denoise [--rate HZ] SOUND OUTPUT.wav PICTURE.png [policy=N]");
        return 1;
    }
    const int rate = asked != NULL ? optionsNumber(asked, 32000) : 0;
    if (asked != NULL && rate != 8000 && rate != 16000 && rate != 32000) {
        refuse("rate: not 8000, 16000 or 32000");
        return 1;
    }
    if (!optionsRead(arguments[4], &keys, 1))
        return 1;

    Sound *given = soundOpen(arguments[1]);
    if (given == NULL)
        return 1;
    const bool done = runAt(rate, given, policy, arguments[2], arguments[3]);
    if (done)
        soundNoteDamage(given);
    soundClose(given);
    return done ? 0 : 1;
}
