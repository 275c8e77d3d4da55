#include <kett/KTfilter.h>

#include "kernels/kernels.h"

#include <algorithm>

void FilterBlockFloat(const double *denominator, const double *numerator, int32_t coefficientCount,
                      double *state1, double *, const float *input, double *output, int32_t sampleCount)
{
    if (sampleCount <= 0)
        return;
    if (coefficientCount <= 0) {
        std::fill_n(output, sampleCount, 0.0);
        return;
    }
    kett::wide::filterBlock(denominator, numerator, coefficientCount, state1, input, output, sampleCount);
}
