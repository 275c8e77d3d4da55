#include "fft/kernels/ORVAfft_kernels.h"
#include "fft/kernels/logarithm.h"

#include <bit>

namespace orva
{
namespace plain
{
namespace
{

// For x above zero. Below the smallest normal number it is the logarithm of that; infinity counts as 2^128.
float fastLog(float x)
{
    x = x > _ps_min_norm_pos ? x : _ps_min_norm_pos;
    const auto bits = std::bit_cast<uint32_t>(x);
    float e = static_cast<float>(static_cast<int32_t>(bits >> 23) - 127) + 1.0f;
    const auto m = std::bit_cast<float>((bits & _ps_inv_mant_mask) | std::bit_cast<uint32_t>(_ps_0p5));
    float u = m - 1.0f;
    if (m < _ps_cephes_SQRTHF) {
        e = e - 1.0f;
        u = u + m;
    }
    const float z = u * u;
    float y = _ps_cephes_log_p0;
    y = y * u + _ps_cephes_log_p1;
    y = y * u + _ps_cephes_log_p2;
    y = y * u + _ps_cephes_log_p3;
    y = y * u + _ps_cephes_log_p4;
    y = y * u + _ps_cephes_log_p5;
    y = y * u + _ps_cephes_log_p6;
    y = y * u + _ps_cephes_log_p7;
    y = y * u + _ps_cephes_log_p8;
    y = y * u * z;
    return (((e * _ps_cephes_log_q1 + y) - 0.5f * z) + u) + e * _ps_cephes_log_q2;
}

// 10 log10(x), not below the floor; what is not above zero is the floor.
float decibelsOf(float x, float floor)
{
    const float y = x > 0.0f ? fastLog(x) * decimalPerNatural * decibelsPerDecimal : floor;
    return y > floor ? y : floor;
}

void decibels(const float *power, float *output, int32_t count, DecibelScale scale)
{
    for (int32_t i = 0; i < count; ++i)
        output[i] = decibelsOf(power[i] * scale.a * scale.b, scale.floor);
}

void adjustedDecibels(const float *power, const float *adjustment, float *output, int32_t count,
                      DecibelScale scale)
{
    for (int32_t i = 0; i < count; ++i) {
        const float gain = adjustment[i];
        output[i] = decibelsOf(power[i] * scale.a * (gain * gain) * scale.b, scale.floor);
    }
}

void powers(const ORVA_COMPLEX *bins, float *power, int32_t count)
{
    for (int32_t k = 0; k < count; ++k)
        power[k] = bins[k].re * bins[k].re + bins[k].im * bins[k].im;
}

// The real part is stored first and the imaginary part reads the inputs afresh: an output that is an input gets wrong
// imaginary parts, always the same ones.
void products(const ORVA_COMPLEX *a, const ORVA_COMPLEX *b, ORVA_COMPLEX *output, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        output[i].re = a[i].re * b[i].re - a[i].im * b[i].im;
        output[i].im = a[i].im * b[i].re + a[i].re * b[i].im;
    }
}

} // namespace
} // namespace plain

template <> const FftKernels &kernelsAt<FftKernels, Level::plain>()
{
    static constexpr FftKernels table = {plain::decibels, plain::adjustedDecibels, plain::powers,
                                         plain::products};
    return table;
}

} // namespace orva
