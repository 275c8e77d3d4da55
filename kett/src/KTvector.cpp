#include <kett/KTvector.h>

#include <cmath>

void FVectorMulScalar(float *vector, int32_t length, float factor)
{
    for (int32_t i = 0; i < length; ++i)
        vector[i] *= factor;
}

double FVectorSumOfSquares(const float *vector, int32_t length)
{
    double sum = 0.0;
    for (int32_t i = 0; i < length; ++i) {
        const double x = vector[i];
        sum += x * x;
    }
    return sum;
}

float FVectorAbsMax(const float *vector, int32_t length)
{
    float maximum = 0.0f;
    FVectorArgAbsMax(vector, length, &maximum);
    return maximum;
}

int32_t FVectorArgAbsMax(const float *vector, int32_t length, float *maximum)
{
    int32_t place = 0;
    float largest = 0.0f;
    for (int32_t i = 0; i < length; ++i) {
        const float magnitude = std::fabs(vector[i]);
        if (magnitude > largest) {
            largest = magnitude;
            place = i;
        }
    }
    if (maximum != nullptr)
        *maximum = largest;
    return place;
}
