// Spectrum utilities: complex vectors, decibels, the response of a pre-emphasis.
#include <orva/ORVAcomplex.h>

#include "fft/ORVAcomplex_log.h"
#include "fft/ORVAfft_internal.h"

#include <algorithm>
#include <cmath>
#include <cstring>

ORVA_COMPLEX *ORVA_CreateComplexVector(const ORVA_FFT *fft)
{
    if (fft == nullptr || fft->length <= 0)
        return nullptr;
    const auto size = static_cast<size_t>(std::max(fft->length, 4)); // four is the least for a work array
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
        const double w = (static_cast<double>(i) / static_cast<double>(M)) * 3.141592653589793;
        const double v = (1.0 - std::cos(w) * (a + a)) + a * a;
        output[i] = static_cast<float>(std::sqrt(v));
    }
    return true;
}

namespace
{

// What the power of each bin is scaled by, and what its decibels are held to from below.
struct Scale {
    float a;
    float b;
    float floor;
};

} // namespace

static Float4 load(const float *from)
{
    Float4 lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

// 10 log10(x), not below the floor; what is not above zero is the floor.
static void storeDecibels(Float4 x, float floor, float *to)
{
    const Float4 floors = allLanes(floor);
    const Float4 y = x > 0.0f ? fastLog(x) * 0.4342944622039795f * 10.0f : floors;
    const Float4 lanes = y > floors ? y : floors;
    std::memcpy(to, &lanes, sizeof lanes);
}

static void convert(const float *power, float *output, int32_t count, Scale scale)
{
    for (int32_t i = 0; i < count; i += 4)
        storeDecibels(load(power + i) * scale.a * scale.b, scale.floor, output + i);
}

static void convertAdjusted(const float *power, const float *adjustment, float *output, int32_t count,
                            Scale scale)
{
    for (int32_t i = 0; i < count; i += 4) {
        const Float4 gain = load(adjustment + i);
        storeDecibels(load(power + i) * scale.a * (gain * gain) * scale.b, scale.floor, output + i);
    }
}

// The top bin goes by the library's logarithm in double, a more exact route than that of the others.
static float topDecibels(float power, double adjustment, Scale scale, double floor)
{
    const float x = power * scale.a;
    if (!(x > 0.0f))
        return static_cast<float>(floor);
    const double y = 10.0 * std::log10(static_cast<double>(x) * adjustment * static_cast<double>(scale.b));
    return static_cast<float>(y > floor ? y : floor);
}

bool ORVA_PSDtoDB(int32_t length, const float *power, float *output, const float *adjustment, double norm,
                  double range)
{
    if (length <= 0 || power == nullptr || output == nullptr)
        return false;
    const int32_t M = length / 2;
    const auto half = static_cast<float>(M);
    const Scale scale = {1.0f / (half * half), 1.0f / std::sqrt(static_cast<float>(norm)),
                         static_cast<float>(-range)};

    // Computed ahead of the others, since those write over place M: so the output may be the power itself.
    const double topAdjustment =
        adjustment == nullptr ? 1.0 : static_cast<double>(adjustment[M] * adjustment[M]);
    const float top = topDecibels(power[M], topAdjustment, scale, -range);

    if (adjustment == nullptr)
        convert(power, output, M, scale);
    else
        convertAdjusted(power, adjustment, output, M, scale);
    output[M] = top;
    return true;
}

bool ORVA_ComplexVectorMultiply(const ORVA_COMPLEX *a, const ORVA_COMPLEX *b, ORVA_COMPLEX *output,
                                int32_t count)
{
    if (a == nullptr || b == nullptr || output == nullptr || count < 0)
        return false;
    // The real part is stored first and the imaginary part reads the inputs afresh: an output that is an
    // input gets wrong imaginary parts, always the same ones.
    for (int32_t i = 0; i < count; ++i) {
        output[i].re = a[i].re * b[i].re - a[i].im * b[i].im;
        output[i].im = a[i].im * b[i].re + a[i].re * b[i].im;
    }
    return true;
}
