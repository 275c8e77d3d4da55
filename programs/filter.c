/* Runs a sound through a filter, every channel of it, and draws what the filter does to each frequency.
 *
 *     $ filter Front_Center.wav telephone.wav telephone.png "type=bandpass; order=4; fpass1=300; fpass2=3400"
 *     telephone.wav: 1.43 s, channels: 1, loudest sample: -7.8 dB
 *     telephone.png: 0 to 24000 Hz, greatest gain: 0.0 dB at 1181 Hz
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
#include <math.h>
#include <orva/orva.h>
#include <stdio.h>
#include <stdlib.h>

enum { blockFrames = 4096 };

static bool run(_ORVA_FILTER *filter, sound *input, sound_output *output, float *loudest)
{
    const int channels = input->info.channels;
    float *block = allocate((size_t) blockFrames * (size_t) channels, sizeof *block);
    bool done = true;
    for (int64_t start = 0; done && start < input->length; start += blockFrames) {
        const int64_t left = input->length - start, frames = left < blockFrames ? left : blockFrames;
        const int32_t floats = (int32_t) frames * channels;
        sound_read(input, 0, block, frames);
        ORVA_Filter(filter, block, block, (uint32_t) floats);
        *loudest = fmaxf(*loudest, FVectorAbsMax(block, floats));
        done = sound_write(output, block, frames);
        progress_show(start + frames, input->length);
    }
    free(block);
    return done;
}

static bool measure(_ORVA_FILTER *mono, response *measured)
{
    float *answer = allocate(RESPONSE_SAMPLES, sizeof *answer);
    answer[0] = 1;
    ORVA_Filter(mono, answer, answer, RESPONSE_SAMPLES);
    const bool done = response_measure(answer, measured);
    free(answer);
    return done;
}

static bool draw(const response *measured, double rate, const char *config, const char *path)
{
    const double top = 10 * ceil(fmax(measured->gain[measured->greatest], -200) / 10);
    const double step = rate / RESPONSE_SAMPLES;
    const axis hertz = axis_frequency(rate / 4800, rate / 2, true);
    plot *picture = plot_create("Response of the filter", config, 2, 220, false);
    plot_panel(picture, 0, hertz, axis_linear(top - 80, top, "Gain (dB)"));
    plot_panel(picture, 1, hertz, axis_phase());
    plot_samples(picture, 0, 0, step, measured->gain, RESPONSE_BINS, NULL);
    plot_samples(picture, 1, 0, step, measured->phase, RESPONSE_BINS, NULL);
    const bool done = plot_save(picture, path);
    plot_destroy(picture);
    return done;
}

int main(int count, char **arguments)
{
    static response measured;
    const bool ready = count == 5 || refuse("usage: filter SOUND OUTPUT.wav RESPONSE.png CONFIGURATION");
    sound *input = ready ? sound_open(arguments[1]) : NULL;
    const double rate = input ? input->info.samplerate : 0;
    const int channels = input ? input->info.channels : 0;
    _ORVA_FILTER *mono = input ? filter_from_text(arguments[4], (int) rate, 1) : NULL;
    _ORVA_FILTER *filter = mono ? filter_from_text(arguments[4], (int) rate, channels) : NULL;
    bool done = filter != NULL && measure(mono, &measured);
    sound_output *output = done ? sound_create(arguments[2], input, input->info.samplerate, channels) : NULL;
    float loudest = 0;
    done = output != NULL && run(filter, input, output, &loudest) &&
           draw(&measured, rate, arguments[4], arguments[3]);
    done = sound_finish(output, done);
    if (done) {
        printf("%s: %.2f s, channels: %d, loudest sample: %.1f dB\n", arguments[2],
               (double) input->length / rate, channels, 20 * log10f(loudest));
        printf("%s: 0 to %g Hz, greatest gain: %.1f dB at %.0f Hz\n", arguments[3], rate / 2,
               measured.gain[measured.greatest], measured.greatest * rate / RESPONSE_SAMPLES);
        sound_note_damage(input);
    }
    ORVA_DestroyFilter(filter);
    ORVA_DestroyFilter(mono);
    sound_close(input);
    return done ? 0 : 1;
}
