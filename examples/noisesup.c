/* Sends a voice at 16 kHz through the noise suppressor, and compares the levels.
 *
 *     cc noisesup.c $(pkg-config --cflags --libs orva kett sndfile) -lm -o noisesup
 */
#include <kett/kett.h>
#include <orva/orva.h>

#include <sndfile.h>

#include <math.h>
#include <stdio.h>

enum { rate = 16000, frame = rate / 100, delay = frame * 3 / 5 }; /* it comes out 6 ms late */

int main(int count, char **arguments)
{
    SF_INFO info = {0};
    SNDFILE *sound = count == 3 ? sf_open(arguments[1], SFM_READ, &info) : NULL;
    const bool taken = sound != NULL && info.samplerate == rate && info.channels == 1;
    sf_count_t length = info.frames, end = length + delay, written = 0;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE *output = taken ? sf_open(arguments[2], SFM_WRITE, &info) : NULL;
    ORVA_NOISESUP *suppressor = ORVA_CreateNoiseSupEx(rate, 3); /* 3 is the strongest policy */
    if (output == NULL || suppressor == NULL) {
        fprintf(stderr, "usage: noisesup VOICE.wav OUTPUT.wav, of one channel at %d Hz\n", rate);
        return 1;
    }
    float samples[frame];
    double before = 0, after = 0, all = (double) length;
    for (sf_count_t start = 0; start < end; start += frame) {
        for (sf_count_t n = sf_read_float(sound, samples, frame); n < frame; ++n)
            samples[n] = 0; /* silence after the end */
        before += FVectorSumOfSquares(samples, frame);
        ORVA_DoNoiseSup(suppressor, samples, samples);
        after += FVectorSumOfSquares(samples, frame);
        const sf_count_t from = start > 0 ? 0 : delay, to = end - start < frame ? end - start : frame;
        written += to > from ? sf_write_float(output, samples + from, to - from) : 0;
    }
    printf("%.2f dB before and %.2f dB after\n", 10 * log10(before / all), 10 * log10(after / all));
    ORVA_DestroyNoiseSup(suppressor);
    sf_close(output);
    sf_close(sound);
    return written == length ? 0 : 1;
}

/* $ ./resample Front_Center.wav voice16.wav && ./noisesup voice16.wav cleaned.wav
 * 22819 samples, and 30 in the filter
 * 68545 samples became 22849
 * -22.74 dB before and -22.74 dB after
 */
