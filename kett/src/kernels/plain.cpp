#include "kernels/kernels.h"

#include <cmath>

namespace kett::plain
{

namespace
{

// Nearest, ties to even, in every rounding mode that the host may have set: the cut is exact, and so is what
// it leaves.
int16_t rounded(float scaled)
{
    if (std::isnan(scaled))
        return 0;
    if (scaled >= 32767.0f)
        return 32767;
    if (scaled <= -32768.0f)
        return -32768;
    const auto cut = static_cast<int32_t>(scaled);
    const float rest = std::fabs(scaled - static_cast<float>(cut));
    const bool isAway = rest > 0.5f || (rest == 0.5f && (cut & 1) != 0);
    return static_cast<int16_t>(cut + (isAway ? (scaled < 0.0f ? -1 : 1) : 0));
}

} // namespace

// x[i] = x[i] f
void multiply(float *vector, int32_t count, float factor)
{
    for (int32_t i = 0; i < count; ++i)
        vector[i] *= factor;
}

// x[0]^2 + x[1]^2 + ..., each term and each sum in double, in this order
double sumOfSquares(const float *vector, int32_t count)
{
    double sum = 0.0;
    for (int32_t i = 0; i < count; ++i) {
        const auto x = static_cast<double>(vector[i]);
        sum += x * x;
    }
    return sum;
}

// The maximum moves on where |x[i]| is strictly greater, which not-a-number never is.
Peak findPeak(const float *vector, int32_t count)
{
    Peak peak = {0.0f, 0};
    for (int32_t i = 0; i < count; ++i) {
        const float magnitude = std::fabs(vector[i]);
        if (magnitude > peak.magnitude)
            peak = {magnitude, i};
    }
    return peak;
}

// w[i] = 32768 x[i], rounded and limited to -32768 .. 32767
void toWord16(const float *input, int16_t *output, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        output[i] = rounded(input[i] * 32768.0f);
}

// x[i] = w[i] / 32768
void fromWord16(const int16_t *input, float *output, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        output[i] = static_cast<float>(input[i]) / 32768.0f;
}

// y    = b[0] x + s[0]
// s[k] = (b[k+1] x + s[k+1]) - a[k+1] y     for k = 0 .. n-2
void filterBlock(const double *denominator, const double *numerator, int32_t coefficientCount, double *state,
                 const float *input, double *output, int32_t sampleCount)
{
    const double *a = denominator;
    const double *b = numerator;
    double *s = state;
    for (int32_t i = 0; i < sampleCount; ++i) {
        const auto x = static_cast<double>(input[i]);
        const double y = b[0] * x + s[0];
        for (int32_t k = 0; k < coefficientCount - 1; ++k)
            s[k] = (b[k + 1] * x + s[k + 1]) - a[k + 1] * y;
        output[i] = y;
    }
}

} // namespace kett::plain
