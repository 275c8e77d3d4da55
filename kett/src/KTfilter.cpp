#include <kett/KTfilter.h>

#include <algorithm>

// y    = b[0] x + s[0]
// s[k] = (b[k+1] x + s[k+1]) - a[k+1] y     for k = 0 .. n-2
void FilterBlockFloat(const double *denominator, const double *numerator, int32_t coefficientCount,
                      double *state1, double *, const float *input, double *output, int32_t sampleCount)
{
    if (sampleCount <= 0)
        return;
    if (coefficientCount <= 0) {
        std::fill_n(output, sampleCount, 0.0);
        return;
    }
    const double *a = denominator;
    const double *b = numerator;
    double *s = state1;
    for (int32_t i = 0; i < sampleCount; ++i) {
        const double x = input[i];
        const double y = b[0] * x + s[0];
        for (int32_t k = 0; k < coefficientCount - 1; ++k)
            s[k] = (b[k + 1] * x + s[k + 1]) - a[k + 1] * y;
        output[i] = y;
    }
}
