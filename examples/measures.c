/* Tells the vowels of a recording (a) from its hisses (s) and its silence (.), in frames of 50 ms.
 *
 *     cc measures.c $(pkg-config --cflags --libs orva sndfile) -o measures
 */
#include <orva/orva.h>

#include <sndfile.h>

#include <stdio.h>

enum { mostRate = 192000 };

int main(int count, char **arguments)
{
    float samples[mostRate / 20];
    SF_INFO info = {0};
    SNDFILE *sound = count == 2 ? sf_open(arguments[1], SFM_READ, &info) : NULL;
    const int32_t frame = info.samplerate / 20;
    if (sound == NULL || info.channels != 1 || info.samplerate < 8000 || info.samplerate > mostRate) {
        fprintf(stderr, "usage: measures SOUND.wav, of one channel at 8000 to %d Hz\n", mostRate);
        return 1;
    }

    while (sf_read_float(sound, samples, frame) == frame) {
        const float energy = ORVA_CalcEnergy(samples, frame); /* 0 where there is none at all */
        const float crossings = ORVA_CalcZeroCrossRate(samples, frame) * (float) info.samplerate;
        if (energy == 0 || energy < -50)
            putchar('.');
        else
            putchar(crossings > 4800 ? 's' : 'a'); /* in a second */
    }
    putchar('\n');
    sf_close(sound);
    return 0;
}

/* $ ./measures Front_Center.wav
 * ssaaaaaasa......sssaaaaaaaa.
 */
