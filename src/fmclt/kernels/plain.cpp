#include "fmclt/kernels/ORVAfmclt_kernels.h"

namespace orva
{
namespace plain
{
namespace
{

struct Complex {
    float re, im;
};

// V[k], each product and each sum rounded to float.
Complex twiddled(const float *bins, const float *window, int64_t k, float s)
{
    const float a = bins[2 * k] * s;
    const float b = bins[2 * k + 1] * s;
    const float wr = window[2 * k];
    const float wi = window[2 * k + 1];
    return {a * wr - b * wi, a * wi + b * wr};
}

void coefficientsOf(const float *bins, const float *window, float *real, float *imag, int32_t M, float s)
{
    Complex V = twiddled(bins, window, 0, s);
    for (int64_t k = 0; k < M; ++k) {
        const Complex next = twiddled(bins, window, k + 1, s);
        real[k] = next.re - V.im;
        imag[k] = V.re + next.im;
        V = next;
    }
}

// The quarter and g are two factors with roundings of their own.
void innerBinsOf(const float *real, const float *imag, const float *window, float *bins, int32_t M, float g)
{
    for (int64_t k = 1; k < M; ++k) {
        const float a = real[k - 1] + imag[k];
        const float b = imag[k - 1] - real[k];
        const float wr = window[2 * k];
        const float wi = window[2 * k + 1];
        bins[2 * k] = (wr * a + wi * b) * 0.25f * g;
        bins[2 * k + 1] = (b * wr - a * wi) * 0.25f * g;
    }
}

// In double, each result rounded once.
void overlapAdd(const float *first, const float *second, float *output, float *overlap, int32_t count,
                double d)
{
    for (int32_t i = 0; i < count; ++i) {
        output[i] = static_cast<float>(static_cast<double>(first[i]) / d + static_cast<double>(overlap[i]));
        overlap[i] = static_cast<float>(static_cast<double>(second[i]) / d);
    }
}

void divide(float *data, int32_t count, float s)
{
    for (int32_t i = 0; i < count; ++i)
        data[i] = data[i] / s;
}

} // namespace
} // namespace plain

template <> const FmcltKernels &kernelsAt<FmcltKernels, Level::plain>()
{
    static constexpr FmcltKernels table = {plain::coefficientsOf, plain::innerBinsOf, plain::overlapAdd,
                                           plain::divide};
    return table;
}

} // namespace orva
