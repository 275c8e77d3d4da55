// Spectrum utilities: complex vectors, decibels, the response of a pre-emphasis.
#include <orva/ORVAcomplex.h>

#include "common/numbers.h"
#include "fft/ORVAfft_internal.h"
#include "fft/kernels/ORVAfft_kernels.h"

#include <algorithm>
#include <cmath>

using namespace orva;

namespace orva
{
namespace
{

// The top bin goes by the library's logarithm in double, a more exact route than that of the others.
float topDecibels(float power, double adjustment, DecibelScale scale, double floor)
{
    const float x = power * scale.a;
    if (!(x > 0.0f))
        return static_cast<float>(floor);
    const double y = 10.0 * std::log10(static_cast<double>(x) * adjustment * static_cast<double>(scale.b));
    return static_cast<float>(y > floor ? y : floor);
}

} // namespace
} // namespace orva

ORVA_COMPLEX *ORVA_CreateComplexVector(const ORVA_FFT *fft)
{
    if (fft == nullptr || fft->length <= 0)
        return nullptr;
    const auto size = static_cast<size_t>(std::max(fft->length, leastWorkLength));
    return static_cast<ORVA_COMPLEX *>(fftwf_malloc(size * sizeof(ORVA_COMPLEX)));
}

bool ORVA_DestroyComplexVector(ORVA_COMPLEX *vector)
{
    if (vector == nullptr)
        return false;
    fftwf_free(vector);
    return true;
}

// |1 - a exp(-iw)| = sqrt(1 - 2 a cos(w) + a^2),  w = pi i / M
bool ORVA_CreatePreEmphAdjust(float *output, int32_t length, double coefficient)
{
    if (output == nullptr)
        return true;
    const int32_t M = length / 2;
    const double a = coefficient;
    for (int32_t i = 0; i <= M; ++i) {
        const double w = (static_cast<double>(i) / static_cast<double>(M)) * pi;
        const double v = (1.0 - std::cos(w) * (a + a)) + a * a;
        output[i] = static_cast<float>(std::sqrt(v));
    }
    return true;
}

bool ORVA_PSDtoDB(int32_t length, const float *power, float *output, const float *adjustment, double norm,
                  double range)
{
    if (length <= 0 || power == nullptr || output == nullptr)
        return false;
    const int32_t M = length / 2;
    const auto half = static_cast<float>(M);
    const DecibelScale scale = {1.0f / (half * half), 1.0f / std::sqrt(static_cast<float>(norm)),
                                static_cast<float>(-range)};

    // Computed ahead of the others, since those write over place M: so the output may be the power itself.
    const double topAdjustment =
        adjustment == nullptr ? 1.0 : static_cast<double>(adjustment[M] * adjustment[M]);
    const float top = topDecibels(power[M], topAdjustment, scale, -range);

    const int32_t grouped = (M + 3) / 4 * 4;
    if (adjustment == nullptr)
        kernels<FftKernels>().decibels(power, output, grouped, scale);
    else
        kernels<FftKernels>().adjustedDecibels(power, adjustment, output, grouped, scale);
    output[M] = top;
    return true;
}

bool ORVA_ComplexVectorMultiply(const ORVA_COMPLEX *a, const ORVA_COMPLEX *b, ORVA_COMPLEX *output,
                                int32_t count)
{
    if (a == nullptr || b == nullptr || output == nullptr || count < 0)
        return false;
    kernels<FftKernels>().products(a, b, output, count);
    return true;
}
