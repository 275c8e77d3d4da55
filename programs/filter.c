/* Runs a sound through a filter, every channel of it, and draws what the filter does to each frequency.
 *
 *     $ filter Front_Center.wav louder.wav louder.png "type=bandpass; order=1; fpass1=300; fpass2=3400; gain=1.5"
 *     louder.wav: 1.43 s, channels: 1, loudest sample: -3.4 dB
 *     louder.png: 0 to 24000 Hz, greatest gain: 3.5 dB at 1017 Hz
 *     $ filter Front_Center.wav ring.wav ring.png "biquads=[-1.9234 0.9409 0.03 0 -0.03]"
 *     ring.wav: 1.43 s, channels: 1, loudest sample: -13.3 dB
 *     ring.png: 0 to 24000 Hz, greatest gain: 0.1 dB at 1027 Hz
 *
 * The filter is a design, with edges in Hz, or is given as biquads, one row a section in the order a1 a2 b0 b1
 * b2, or as two vectors, such as "numerator=[1 -1]; denominator=[1 -0.995]". The picture is the spectrum of what
 * it answers to a single 1 in 65536 samples. A sample of 1.0 has 0 dB.
 */
#include "common/filter_text.h"
#include "common/memory.h"
#include "common/messages.h"
#include "common/plot.h"
#include "common/progress.h"
#include "common/response.h"
#include "common/sound.h"

#include <kett/KTvector.h>
#include <orva/orva.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>

/* Sends the sound through, block by block; puts the loudest sample that comes out into *loudest. */
static bool filterAll(_ORVA_FILTER *filter, Sound *input, SoundOutput *output, float *loudest)
{
    const int channels = input->info.channels;
    float *block = allocate((size_t) blockFrames * (size_t) channels, sizeof *block);
    bool done = true;
    *loudest = 0;
    for (int64_t start = 0; done && start < input->length; start += blockFrames) {
        const int64_t left = input->length - start;
        const int64_t frames = left < blockFrames ? left : blockFrames;
        const int32_t samples = (int32_t) frames * channels;
        soundRead(input, 0, block, frames);
        ORVA_Filter(filter, block, block, (uint32_t) samples);
        *loudest = fmaxf(*loudest, FVectorAbsMax(block, samples));
        done = soundWrite(output, block, frames);
        progressShow(start + frames, input->length);
    }
    free(block);
    return done;
}

static bool measure(_ORVA_FILTER *mono, Response *measured)
{
    float *answer = allocate(responseSamples, sizeof *answer);
    answer[0] = 1;
    ORVA_Filter(mono, answer, answer, responseSamples);
    const bool done = responseMeasure(answer, measured);
    free(answer);
    return done;
}

static bool draw(const Response *measured, double rate, const char *config, const char *path)
{
    const double greatest = measured->gain[measured->greatest];
    const double top = 10 * ceil(fmax(greatest, -200) / 10);
    const double step = rate / responseSamples;
    const Axis hertz = axisFrequency(rate / 4800, rate / 2, true);

    Plot *picture = plotCreate("Response of the filter", config, 2, 220, false);
    plotPanel(picture, 0, hertz, axisLinear(top - 80, top, "Gain (dB)"));
    plotPanel(picture, 1, hertz, axisPhase());
    plotSamples(picture, 0, 0, step, measured->gain, responseBins, NULL);
    plotSamples(picture, 1, 0, step, measured->phase, responseBins, NULL);
    const bool done = plotSave(picture, path);
    plotDestroy(picture);
    return done;
}

/* Writes the sound and the picture, and says what is in them. */
static bool writeBoth(_ORVA_FILTER *filter, Sound *input, const Response *measured, char **arguments)
{
    const char *wav = arguments[2];
    const char *png = arguments[3];
    const double rate = input->info.samplerate;
    const int channels = input->info.channels;
    SoundOutput *output = soundCreate(wav, input, input->info.samplerate, channels);
    if (output == NULL)
        return false;
    float loudest;
    bool done = filterAll(filter, input, output, &loudest) && draw(measured, rate, arguments[4], png);
    done = soundFinish(output, done);
    if (done) {
        printf("%s: %.2f s, channels: %d, loudest sample: %.1f dB\n", wav, (double) input->length / rate,
               channels, 20 * log10f(loudest));
        printf("%s: 0 to %g Hz, greatest gain: %.1f dB at %.0f Hz\n", png, rate / 2,
               measured->gain[measured->greatest], measured->greatest * rate / responseSamples);
        soundNoteDamage(input);
    }
    return done;
}

static bool run(Sound *input, char **arguments)
{
    static Response measured;
    const int rate = input->info.samplerate;
    _ORVA_FILTER *mono =
        filterFromText(arguments[4], rate, 1); /* the response is measured with one channel */
    if (mono == NULL)
        return false;
    bool done = false;
    _ORVA_FILTER *filter = filterFromText(arguments[4], rate, input->info.channels);
    if (filter != NULL)
        done = measure(mono, &measured) && writeBoth(filter, input, &measured, arguments);
    ORVA_DestroyFilter(filter);
    ORVA_DestroyFilter(mono);
    return done;
}

int main(int count, char **arguments)
{
    if (count != 5) {
        refuse("usage: filter SOUND OUTPUT.wav RESPONSE.png CONFIGURATION");
        return 1;
    }
    Sound *input = soundOpen(arguments[1]);
    const bool done = input != NULL && run(input, arguments);
    soundClose(input);
    return done ? 0 : 1;
}
