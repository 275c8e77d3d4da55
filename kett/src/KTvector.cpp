#include <kett/KTvector.h>

#include "kernels/kernels.h"

using namespace kett;

void FVectorMulScalar(float *vector, int32_t length, float factor)
{
    wide::multiply(vector, length, factor);
}

double FVectorSumOfSquares(const float *vector, int32_t length)
{
    return plain::sumOfSquares(vector, length);
}

float FVectorAbsMax(const float *vector, int32_t length)
{
    return wide::largestMagnitude(vector, length);
}

int32_t FVectorArgAbsMax(const float *vector, int32_t length, float *maximum)
{
    const Peak peak = wide::findPeak(vector, length);
    if (maximum != nullptr)
        *maximum = peak.magnitude;
    return peak.place;
}
