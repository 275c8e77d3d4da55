#include "host.h"

enum { count = 1000 };

void use_resampling(void)
{
    static float input[count], output[count];
    for (int n = 0; n < count; ++n)
        input[n] = 1;
    ORVA_RESAMPLER *converter = ORVA_ResampleInit(16000, 8000, "order=8");
    check(converter != NULL, "a resampler");
    const int32_t tail = ORVA_ResampleFlushBufferSize(converter);
    check(tail == 8, "its delay at the lower rate");
    const int32_t written = ORVA_Resample(converter, input, output, count);
    check(written == count / 2 - tail, "half as many samples, less the delay");
    check(near((double) output[count / 4], 1, 0.01), "a constant stays");
    check(ORVA_ResampleFlushBuffersEx(converter, output + written, 0) == tail, "the tail");
    check(ORVA_ResampleDestroy(converter) == 1, "the resampler destroyed");
}
