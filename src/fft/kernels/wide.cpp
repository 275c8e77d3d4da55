// A spectrum is taken four vectors at a time, so that their long chains of dependent steps overlap; then one vector at a
// time; then what is left, in a vector that it does not fill.
//
//     |  v0  v1  v2  v3  |  v0  v1  v2  v3  |  v0  |  v0  | v0..
#include "common/lanes.h"
#include "fft/kernels/ORVAfft_kernels.h"
#include "fft/kernels/logarithm.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

Floats constant(float x)
{
    return allLanes<Floats>(x);
}

// The logarithm of `count` vectors, step by step for all of them. What each step does is told in plain.cpp.
template <int count> [[gnu::always_inline]] inline void fastLog(Floats (&x)[count])
{
    Floats u[count], y[count], e[count];
#pragma GCC unroll 4
    for (int v = 0; v < count; ++v) {
        const Floats least = constant(_ps_min_norm_pos);
        const Bits bits = reinterpret_cast<Bits>(x[v] > least ? x[v] : least);
        const Ints exponent = reinterpret_cast<Ints>(bits >> 23) - 127;
        const Floats m =
            reinterpret_cast<Floats>((bits & _ps_inv_mant_mask) | reinterpret_cast<Bits>(constant(_ps_0p5)));
        const Floats whole = __builtin_convertvector(exponent, Floats) + 1.0f;
        // Where m is lower, one less and one m more; elsewhere a zero each, which changes nothing.
        const Ints isLower = m < _ps_cephes_SQRTHF;
        e[v] = whole - reinterpret_cast<Floats>(isLower & reinterpret_cast<Ints>(constant(1.0f)));
        u[v] = (m - 1.0f) + reinterpret_cast<Floats>(isLower & reinterpret_cast<Ints>(m));
        y[v] = constant(_ps_cephes_log_p0);
    }
    constexpr float p[] = {_ps_cephes_log_p1, _ps_cephes_log_p2, _ps_cephes_log_p3, _ps_cephes_log_p4,
                           _ps_cephes_log_p5, _ps_cephes_log_p6, _ps_cephes_log_p7, _ps_cephes_log_p8};
#pragma GCC unroll 8
    for (int i = 0; i < 8; ++i) {
#pragma GCC unroll 4
        for (int v = 0; v < count; ++v)
            y[v] = y[v] * u[v] + p[i];
    }
#pragma GCC unroll 4
    for (int v = 0; v < count; ++v) {
        const Floats z = u[v] * u[v];
        y[v] = y[v] * u[v] * z;
        x[v] = (((e[v] * _ps_cephes_log_q1 + y[v]) - 0.5f * z) + u[v]) + e[v] * _ps_cephes_log_q2;
    }
}

template <int count> [[gnu::always_inline]] inline void decibelsOf(Floats (&x)[count], Floats floor)
{
    Ints isAboveZero[count];
#pragma GCC unroll 4
    for (int v = 0; v < count; ++v)
        isAboveZero[v] = x[v] > 0.0f;
    fastLog(x);
#pragma GCC unroll 4
    for (int v = 0; v < count; ++v) {
        const Floats y = isAboveZero[v] ? x[v] * decimalPerNatural * decibelsPerDecimal : floor;
        x[v] = y > floor ? y : floor;
    }
}

// `scaled(i, take)` gives the scaled powers from bin i on, of which take(from) reads a vector.
template <class Scaled>
[[gnu::always_inline]] inline void convert(float *output, int32_t count, float floor, Scaled scaled)
{
    constexpr int32_t atOnce = 4;
    const Floats floors = constant(floor);
    int32_t i = 0;
    for (; i <= count - atOnce * floatLanes; i += atOnce * floatLanes) {
        Floats x[atOnce];
#pragma GCC unroll 4
        for (int32_t v = 0; v < atOnce; ++v)
            x[v] = scaled(i + v * floatLanes, [](const float *from) { return load<Floats>(from); });
        decibelsOf(x, floors);
#pragma GCC unroll 4
        for (int64_t v = 0; v < atOnce; ++v)
            store(output + i + v * floatLanes, x[v]);
    }
    for (; i < count; i += floatLanes) {
        const int32_t left = count - i < floatLanes ? count - i : floatLanes;
        Floats x[1] = {scaled(i, [left](const float *from) { return loadPart<Floats>(from, left); })};
        decibelsOf(x, floors);
        storePart(output + i, x[0], left);
    }
}

void decibels(const float *power, float *output, int32_t count, DecibelScale scale)
{
    convert(output, count, scale.floor,
            [=](int32_t i, auto take) { return take(power + i) * scale.a * scale.b; });
}

void adjustedDecibels(const float *power, const float *adjustment, float *output, int32_t count,
                      DecibelScale scale)
{
    convert(output, count, scale.floor, [=](int32_t i, auto take) {
        const Floats gain = take(adjustment + i);
        return take(power + i) * scale.a * (gain * gain) * scale.b;
    });
}

const float *floatsOf(const ORVA_COMPLEX *values)
{
    return &values->re;
}

[[gnu::always_inline]] inline void storePowers(const ORVA_COMPLEX *bins, float *power)
{
    const auto low = load<Floats>(floatsOf(bins));
    const auto high = load<Floats>(floatsOf(bins) + floatLanes);
    const Floats re = evens(low, high);
    const Floats im = odds(low, high);
    store(power, re * re + im * im);
}

void powers(const ORVA_COMPLEX *bins, float *power, int32_t count)
{
    constexpr int32_t atOnce = 4 * floatLanes;
    int32_t k = 0;
    for (; k <= count - atOnce; k += atOnce) {
#pragma GCC unroll 4
        for (int32_t v = 0; v < atOnce; v += floatLanes)
            storePowers(bins + k + v, power + k + v);
    }
    for (; k <= count - floatLanes; k += floatLanes)
        storePowers(bins + k, power + k);
    kernelsAt<FftKernels, Level::plain>().powers(bins + k, power + k, count - k);
}

bool overlaps(const ORVA_COMPLEX *input, const ORVA_COMPLEX *output, int32_t count)
{
    const auto bytes = static_cast<uintptr_t>(count) * sizeof(ORVA_COMPLEX);
    const auto in = reinterpret_cast<uintptr_t>(input);
    const auto out = reinterpret_cast<uintptr_t>(output);
    return in < out + bytes && out < in + bytes;
}

void products(const ORVA_COMPLEX *a, const ORVA_COMPLEX *b, ORVA_COMPLEX *output, int32_t count)
{
    constexpr int32_t valuesPerVector = floatLanes / 2;
    int32_t i = 0;
    if (!overlaps(a, output, count) && !overlaps(b, output, count)) {
        for (; i <= count - valuesPerVector; i += valuesPerVector) {
            const auto x = load<Floats>(floatsOf(a + i));
            const auto y = load<Floats>(floatsOf(b + i));
            const Floats straight = x * evensTwice(y);          // a.re b.re, a.im b.re
            const Floats crossed = exchanged(x) * oddsTwice(y); // a.im b.im, a.re b.im
            store(&output[i].re, straight + withEvensNegated(crossed));
        }
    }
    kernelsAt<FftKernels, Level::plain>().products(a + i, b + i, output + i, count - i);
}

} // namespace
} // namespace ORVA_LEVEL

template <> const FftKernels &kernelsAt<FftKernels, Level::ORVA_LEVEL>()
{
    static constexpr FftKernels table = {ORVA_LEVEL::decibels, ORVA_LEVEL::adjustedDecibels,
                                         ORVA_LEVEL::powers, ORVA_LEVEL::products};
    return table;
}

} // namespace orva
