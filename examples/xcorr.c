/* Finds by how much the second channel of a sound lags the first, as two microphones hear one voice.
 *
 *     cc xcorr.c $(pkg-config --cflags --libs orva kett sndfile) -o xcorr
 */
#include <kett/kett.h>
#include <orva/orva.h>

#include <sndfile.h>

#include <stdio.h>

enum { length = 16384, lags = 2 * length - 1 }; /* four times the longest delay, or more, does best */

int main(int count, char **arguments)
{
    static float both[2 * length], first[length], second[length], r[lags];
    SF_INFO info = {0};
    SNDFILE *sound = count == 2 ? sf_open(arguments[1], SFM_READ, &info) : NULL;
    if (sound == NULL || info.channels != 2 || sf_readf_float(sound, both, length) < length) {
        fprintf(stderr, "usage: xcorr SOUND.wav, of two channels and %d frames at least\n", length);
        return 1;
    }
    for (int n = 0; n < length; ++n) {
        first[n] = both[2 * n];
        second[n] = both[2 * n + 1];
    }

    ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(length, length);
    if (xcorr == NULL) {
        fprintf(stderr, "xcorr: out of memory\n");
        return 1;
    }
    ORVA_XcorrPhatProcess(xcorr, second, first, r); /* a positive lag: what stands first here is later */
    int32_t lag = FVectorArgAbsMax(r, lags, NULL) - (length - 1);
    printf("phase transform: %d samples, %.2f ms\n", lag, 1000.0 * lag / info.samplerate);

    const double coefficient = ORVA_XcorrCoef(second, length, first, length, &lag);
    printf("coefficient:     %d samples, %.2f alike\n", lag, coefficient);

    ORVA_XcorrProcDestroy(xcorr);
    sf_close(sound);
    return 0;
}

/* Of a voice, and the same 480 samples later:
 *
 * $ ./xcorr pair.wav
 * phase transform: 480 samples, 10.00 ms
 * coefficient:     480 samples, 1.00 alike
 */
