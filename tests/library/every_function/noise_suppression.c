#include "host.h"

#include <math.h>

enum { frames = 30, frame = 160 };

void use_noise_suppression(void)
{
    ORVA_NOISESUP *suppressor = ORVA_CreateNoiseSupEx(16000, 1);
    check(suppressor != NULL, "a noise suppressor");
    check(ORVA_NoiseSupBufferSize(suppressor) == frame, "its frame");
    check(ORVA_SetNoiseSupIntensity(suppressor, 3), "another degree");
    check(!ORVA_SetNoiseSupIntensity(suppressor, 4), "a degree that is none");
    float block[frame], most = 0;
    int16_t words[frame];
    for (int n = 0; n < frames * frame; ++n) {
        block[n % frame] = (float) (0.25 * sin(0.2 * n));
        if (n % frame < frame - 1)
            continue;
        check(ORVA_DoNoiseSup(suppressor, block, block) == 1, "a frame in float");
        most = fabsf(block[frame / 2]) > most ? fabsf(block[frame / 2]) : most;
    }
    check(near((double) most, 0.25, 0.02), "a tone as loud as before");
    for (int n = 0; n < frame; ++n)
        words[n] = (int16_t) (8000 * sin(0.2 * (frames * frame + n)));
    check(ORVA_DoNoiseSup16(suppressor, words, words) == 1, "a frame in 16 bits");
    int largest = 0;
    for (int n = 0; n < frame; ++n)
        largest = words[n] > largest ? words[n] : largest;
    check(largest > 7000 && largest < 9000, "it is still there");
    check(ORVA_DestroyNoiseSup(suppressor), "the suppressor destroyed");
}
