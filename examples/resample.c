/* Brings a recording from 48 to 16 kHz, the rate that recognisers of speech take.
 *
 *     cc resample.c $(pkg-config --cflags --libs orva sndfile) -o resample
 */
#include <orva/orva.h>

#include <sndfile.h>

#include <stdio.h>

enum { from = 48000, to = 16000, blockFrames = 1024, room = blockFrames * to / from + 1 };

int main(int count, char **arguments)
{
    SF_INFO info = {0}, format = {.samplerate = to, .channels = 1, .format = SF_FORMAT_WAV | SF_FORMAT_FLOAT};
    SNDFILE *sound = count == 3 ? sf_open(arguments[1], SFM_READ, &info) : NULL;
    const bool taken = sound != NULL && info.samplerate == from && info.channels == 1;
    SNDFILE *output = taken ? sf_open(arguments[2], SFM_WRITE, &format) : NULL;
    ORVA_RESAMPLER *converter = ORVA_ResampleInit(from, to, "order=30");
    if (output == NULL || converter == NULL) {
        fprintf(stderr, "usage: resample SOUND.wav OUTPUT.wav, of one channel at %d Hz\n", from);
        return 1;
    }

    float in[blockFrames], out[room];
    sf_count_t length, made, all = 0, written = 0;
    while ((length = sf_read_float(sound, in, blockFrames)) > 0) {
        made = ORVA_Resample(converter, in, out, (int32_t) length);
        written += sf_write_float(output, out, made);
        all += length;
    }
    const sf_count_t due = (all * to + from - 1) / from; /* as long as the input */
    printf("%lld samples, and %d in the filter\n", (long long) written,
           ORVA_ResampleFlushBufferSize(converter));
    if (written < due) {
        made = ORVA_ResampleFlushBuffersEx(converter, out, (int32_t) (due - written));
        written += sf_write_float(output, out, made);
    }
    printf("%lld samples became %lld\n", (long long) all, (long long) written);
    ORVA_ResampleDestroy(converter);
    sf_close(output);
    sf_close(sound);
    return written == due ? 0 : 1;
}

/* $ ./resample Front_Center.wav voice16.wav
 * 22819 samples, and 30 in the filter
 * 68545 samples became 22849
 */
