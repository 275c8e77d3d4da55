/* A tuner: the strongest tone of a sound, and by how much it misses the A above middle C.
 *
 *     cc fft.c $(pkg-config --cflags --libs orva kett sndfile) -lm -o fft
 */
#include <kett/kett.h>
#include <orva/orva.h>

#include <sndfile.h>

#include <math.h>
#include <stdio.h>

enum { length = 16384, room = length / 2 + 4, lowest = 8 }; /* powers come by fours, three beyond the bins */

int main(int count, char **arguments)
{
    static float window[length];
    SF_INFO info = {0};
    SNDFILE *sound = count == 2 ? sf_open(arguments[1], SFM_READ, &info) : NULL;
    if (sound == NULL || info.channels != 1 || info.frames < length) {
        fprintf(stderr, "usage: fft SOUND.wav, of one channel and %d samples at least\n", length);
        return 1;
    }
    KT_MEM *memory = KTMEM_CreateMemDescrEx("tuner", 0, 0);
    float *frame = KTMEM_NewFloatVector(memory, length); /* aligned to 16 bytes, as transforms need it */
    float *level = KTMEM_NewFloatVector(memory, room);   /* the powers, and then decibels */
    ORVA_FFT *fft = ORVA_FFTProcCreate(length);
    if (frame == NULL || level == NULL || fft == NULL || sf_read_float(sound, frame, length) < length)
        return 1;
    ORVA_CreateWindow(ORVA_GetWindowType("Hanning"), window, length);
    ORVA_ApplyWindow(window, frame, length);
    const int32_t bins = ORVA_FFTProcExecutePSDEx(fft, frame, level, NULL);
    const int32_t peak = lowest + FVectorArgAbsMax(level + lowest, bins - 1 - lowest, NULL);
    const double norm = pow(ORVA_GetWindowNormFactor(window, length), 4); /* a sine of full scale has 0 dB */
    ORVA_PSDtoDB(length, level, level, NULL, norm, 120.0);

    /* The parabola through the peak and its neighbours says where between the bins it stands. */
    const double below = level[peak - 1], at = level[peak], above = level[peak + 1];
    const double bend = below - 2 * at + above;
    const double hertz = (peak + (bend < 0 ? (below - above) / (2 * bend) : 0)) * info.samplerate / length;
    printf("%.1f Hz at %.0f dB, %+.0f cents from A4\n", hertz, at, 1200 * log2(hertz / 440));
    ORVA_FFTProcDestroy(fft);
    KTMEM_DisposeMemDescr(memory);
    return sf_close(sound);
}

/* $ ./fft string.wav
 * 443.0 Hz at -6 dB, +12 cents from A4
 */
