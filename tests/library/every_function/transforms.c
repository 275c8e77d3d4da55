#include "host.h"

#include <math.h>

enum { length = 64, half = length / 2, bin = 4 };

typedef struct {
    ORVA_FFT *forward, *inverse;
    ORVA_COMPLEX *spectrum;
    float *samples, *result, *gain; /* aligned as transforms need it */
} transforms;

static transforms begin(void)
{
    transforms t = {ORVA_FFTProcCreate(length), ORVA_IFFTProcCreate(length), NULL, NULL, NULL, NULL};
    t.spectrum = ORVA_CreateComplexVector(t.forward);
    t.samples = (float *) ORVA_CreateComplexVector(t.forward);
    t.result = (float *) ORVA_CreateComplexVector(t.forward);
    t.gain = (float *) ORVA_CreateComplexVector(t.inverse);
    check(t.forward && t.inverse && t.spectrum && t.samples && t.result && t.gain, "processors and vectors");
    for (int n = 0; n < length; ++n) /* a cosine in the middle of a bin */
        t.samples[n] = (float) cos(2 * acos(-1.0) * bin * n / length);
    return t;
}

static void end(transforms *t)
{
    check(ORVA_DestroyComplexVector(t->spectrum), "a vector destroyed");
    check(ORVA_DestroyComplexVector((ORVA_COMPLEX *) t->samples), "a second one");
    check(ORVA_DestroyComplexVector((ORVA_COMPLEX *) t->result), "a third one");
    check(ORVA_DestroyComplexVector((ORVA_COMPLEX *) t->gain), "a fourth one");
    check(ORVA_FFTProcDestroy(t->forward), "a forward processor destroyed");
    check(ORVA_FFTProcDestroy(t->inverse), "an inverse processor destroyed");
}

void use_processors(void)
{
    transforms t = begin();
    check(ORVA_FFTProcExecute(t.forward, t.samples, t.spectrum) == half + 1, "bins of a transform");
    check(near((double) t.spectrum[bin].re, half, 1e-4), "the bin of a cosine");
    check(near((double) t.spectrum[bin + 1].re, 0, 1e-4), "the bin beside it");
    check(ORVA_IFFTProcExecuteEx(t.inverse, t.spectrum, t.result, true) == length, "samples of an inverse");
    check(near((double) t.result[5], (double) t.samples[5], 1e-5), "there and back");
    check(ORVA_FFTProcExecutePSDEx(t.forward, t.samples, t.result, t.spectrum) == half + 1,
          "bins of a power");
    check(near((double) t.result[bin], half * half, 0.01), "the power of a cosine");
    end(&t);
}

void use_spectra(void)
{
    transforms t = begin();
    ORVA_FFTProcExecutePSDEx(t.forward, t.samples, t.result, t.spectrum);
    check(ORVA_CreatePreEmphAdjust(t.gain, length, 0.5), "response of a pre-emphasis");
    check(near((double) t.gain[0], 0.5, 1e-6) && near((double) t.gain[half], 1.5, 1e-6), "its ends");
    check(ORVA_PSDtoDB(length, t.result, t.samples, NULL, 1, 120), "decibels");
    check(near((double) t.samples[bin], 0, 0.001), "0 dB for a cosine of height 1");
    check(near((double) t.samples[20], -120, 0.001), "the floor elsewhere");
    check(ORVA_PSDtoDB(length, t.result, t.result, t.gain, 1, 120), "decibels through the pre-emphasis");
    check(near((double) t.result[bin], 20 * log10((double) t.gain[bin]), 0.001), "its gain in them");

    const ORVA_COMPLEX a = {1, 2}, b = {3, 4};
    ORVA_COMPLEX product = {0, 0};
    check(ORVA_ComplexVectorMultiply(&a, &b, &product, 1), "a complex product");
    check(product.re == -5 && product.im == 10, "its value");
    end(&t);
}
