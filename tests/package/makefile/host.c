/* A host in C: finds the band of a tone. */
#include <kett/KTversion.h>
#include <orva/orva.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>

enum { SIZE = 64, BAND = 5 };

int main(void)
{
    float samples[SIZE];
    const float radiansPerSample = 2.0f * 3.14159265f * (float) BAND / (float) SIZE;
    for (int i = 0; i < SIZE; ++i)
        samples[i] = sinf(radiansPerSample * (float) i);

    ORVA_FFT *fft = ORVA_FFTProcCreate(SIZE);
    ORVA_COMPLEX *bins = ORVA_CreateComplexVector(fft);
    const int count = ORVA_FFTProcExecute(fft, samples, bins);
    int loudest = 0;
    for (int k = 1; k < count; ++k)
        if (hypotf(bins[k].re, bins[k].im) > hypotf(bins[loudest].re, bins[loudest].im))
            loudest = k;
    ORVA_DestroyComplexVector(bins);
    ORVA_FFTProcDestroy(fft);

    int32_t major = 0;
    int32_t minor = 0;
    KTVERSION_Find("liborva", &major, &minor, 0, 0);
    printf("%d.%d: band %d of %d\n", (int) major, (int) minor, loudest, count);
    return EXIT_SUCCESS;
}
