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
    if (sound == NULL || info.samplerate != rate || info.channels != 1) {
        fprintf(stderr, "usage: noisesup VOICE.wav OUTPUT.wav, of one channel at %d Hz\n", rate);
        return 1;
    }
    const sf_count_t length = info.frames, end = length + delay;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE *output = sf_open(arguments[2], SFM_WRITE, &info);
    ORVA_NOISESUP *suppressor = ORVA_CreateNoiseSupEx(rate, 3); /* 3 is the strongest policy */
    if (output == NULL || suppressor == NULL) {
        fprintf(stderr, "noisesup: %s\n", output == NULL ? sf_strerror(NULL) : "out of memory");
        return 1;
    }

    float samples[frame];
    double before = 0, after = 0;
    sf_count_t written = 0;
    for (sf_count_t start = 0; start < end; start += frame) {
        for (sf_count_t n = sf_read_float(sound, samples, frame); n < frame; ++n)
            samples[n] = 0; /* silence after the end */
        before += FVectorSumOfSquares(samples, frame);
        ORVA_DoNoiseSup(suppressor, samples, samples);
        after += FVectorSumOfSquares(samples, frame);
        const sf_count_t from = start > 0 ? 0 : delay, to = end - start < frame ? end - start : frame;
        written += to > from ? sf_write_float(output, samples + from, to - from) : 0;
    }
    printf("%lld samples, %.2f dB before and %.2f dB after\n", (long long) written,
           10 * log10(before / (double) length), 10 * log10(after / (double) length));
    if (written < length)
        fprintf(stderr, "noisesup: %s: %s\n", arguments[2], sf_strerror(output));

    ORVA_DestroyNoiseSup(suppressor);
    sf_close(output);
    sf_close(sound);
    return written == length ? 0 : 1;
}

/* $ ./resample Front_Center.wav voice16.wav && ./noisesup voice16.wav cleaned.wav
 * 22819 samples, and 30 in the filter
 * 68545 samples became 22849
 * 22849 samples, -22.74 dB before and -22.74 dB after
 */
