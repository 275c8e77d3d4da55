/* A tuner: the strongest tone of a sound, and by how much it misses a note.
 *
 *     cc fft.c $(pkg-config --cflags --libs orva kett sndfile) -lm -o fft
 */
#include <kett/kett.h>
#include <orva/orva.h>

#include <sndfile.h>

#include <math.h>
#include <stdio.h>

enum { length = 16384, room = length / 2 + 4 }; /* powers come by fours, up to three more than bins */

static const char *const names[12] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};

int main(int count, char **arguments)
{
    static float window[length];
    SF_INFO info = {0};
    SNDFILE *sound = count == 2 ? sf_open(arguments[1], SFM_READ, &info) : NULL;
    KT_MEM *memory = KTMEM_CreateMemDescrEx("tuner", 0, 0);
    float *frame = KTMEM_NewFloatVector(memory, length); /* aligned to 16 bytes, as transforms need it */
    float *level = KTMEM_NewFloatVector(memory, room);   /* the powers, and then decibels */
    ORVA_FFT *fft = ORVA_FFTProcCreate(length);
    if (frame == NULL || level == NULL || fft == NULL) {
        fprintf(stderr, "fft: out of memory\n");
        return 1;
    }
    if (sound == NULL || info.channels != 1 || info.samplerate < 8000 ||
        sf_read_float(sound, frame, length) < length) {
        fprintf(stderr, "usage: fft SOUND.wav, of one channel, 8000 Hz and %d samples at least\n", length);
        return 1;
    }

    ORVA_CreateWindow(ORVA_GetWindowType("Hanning"), window, length);
    ORVA_ApplyWindow(window, frame, length);
    const int32_t bins = ORVA_FFTProcExecutePSDEx(fft, frame, level, NULL);
    const int32_t lowest = 1 + 20 * length / info.samplerate; /* the first bin above 20 Hz */
    const int32_t peak = lowest + FVectorArgAbsMax(level + lowest, bins - 1 - lowest, NULL);
    const double norm = pow(ORVA_GetWindowNormFactor(window, length), 4); /* a sine of full scale has 0 dB */
    ORVA_PSDtoDB(length, level, level, NULL, norm, 120.0);

    /* The parabola through the peak and its neighbours says where between the bins it stands. */
    const double below = level[peak - 1], at = level[peak], above = level[peak + 1];
    const double bend = below - 2 * at + above;
    const double hertz = (peak + (bend < 0 ? (below - above) / (2 * bend) : 0)) * info.samplerate / length;
    const double semitones = 69 + 12 * log2(hertz / 440);
    const int note = (int) lround(semitones);
    printf("%.1f Hz at %.0f dB: %s%d, %+.0f cents\n", hertz, at, names[note % 12], note / 12 - 1,
           100 * (semitones - note));

    ORVA_FFTProcDestroy(fft);
    KTMEM_DisposeMemDescr(memory);
    sf_close(sound);
    return 0;
}

/* Of a string that is to give an A, and is tuned to 443 Hz:
 *
 * $ ./fft string.wav
 * 443.0 Hz at -6 dB: A4, +12 cents
 */
