#include "common/lanes.h"
#include "fmclt/kernels/ORVAfmclt_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

constexpr int32_t binsPerVector = floatLanes / 2;

// V[k] of a vector of bins: with a = U s,
//
//     straight    a.re w.re   a.im w.re
//     crossed     a.im w.im   a.re w.im      taken from the real parts, added to the imaginary ones
[[gnu::always_inline]] inline Floats twiddled(Floats u, Floats w, float s)
{
    const Floats a = u * s;
    return a * evensTwice(w) + withEvensNegated(exchanged(a) * oddsTwice(w));
}

// j V[k] + V[k+1], where `v` holds V[k] on and `next` what follows: j (re, im) = (-im, re).
[[gnu::always_inline]] inline Floats combined(Floats v, Floats next)
{
    return afterFirstPair(v, next) + withEvensNegated(exchanged(v));
}

// The coefficients of the bins in v0 and v1, their parts separated. Of v2 only its first bin counts.
//
//     v0 = V[k] ..   v1   v2
//     j v0 + (v0 v1 from V[k+1] on),  j v1 + (v1 v2 from their second on)   ->   real[k] .. , imag[k] ..
[[gnu::always_inline]] inline void storeCoefficients(Floats v0, Floats v1, Floats v2, float *real,
                                                     float *imag)
{
    const Floats low = combined(v0, v1);
    const Floats high = combined(v1, v2);
    store(real, evens(low, high));
    store(imag, odds(low, high));
}

// Of the third vector at the end no more is read than counts. The last vectors end with the last coefficient; some are then
// found twice.
void coefficientsOf(const float *bins, const float *window, float *real, float *imag, int32_t M, float s)
{
    if (M < floatLanes)
        return kernelsAt<FmcltKernels, Level::plain>().coefficientsOf(bins, window, real, imag, M, s);
    const auto twiddledAt = [=](int64_t k) {
        return twiddled(load<Floats>(bins + 2 * k), load<Floats>(window + 2 * k), s);
    };
    int64_t start = 0;
    Floats v0 = twiddledAt(0);
    for (; start <= M + 1 - (floatLanes + binsPerVector); start += floatLanes) {
        const Floats v1 = twiddledAt(start + binsPerVector);
        const Floats v2 = twiddledAt(start + floatLanes);
        storeCoefficients(v0, v1, v2, real + start, imag + start);
        v0 = v2;
    }
    const int64_t last = M - floatLanes;
    for (; start < M; start += floatLanes) {
        const int64_t k = start < last ? start : last;
        const int64_t third = 2 * (k + floatLanes);
        const Floats v2 = twiddled(loadPart<Floats>(bins + third, 2), loadPart<Floats>(window + third, 2), s);
        storeCoefficients(twiddledAt(k), twiddledAt(k + binsPerVector), v2, real + k, imag + k);
    }
}

// conj(w) (a + j b) of a vector of bins: (w.re a + w.im b, w.re b - w.im a).
[[gnu::always_inline]] inline Floats untwiddled(Floats ab, const float *window)
{
    const auto w = load<Floats>(window);
    return evensTwice(w) * ab + withOddsNegated(oddsTwice(w) * exchanged(ab));
}

// a and b are found with their parts apart, then brought into the order of the bins. The last vectors end with the last
// bin; some are then found twice.
void innerBinsOf(const float *real, const float *imag, const float *window, float *bins, int32_t M, float g)
{
    if (M <= floatLanes)
        return kernelsAt<FmcltKernels, Level::plain>().innerBinsOf(real, imag, window, bins, M, g);
    const int32_t last = M - floatLanes;
    for (int32_t start = 1; start < M; start += floatLanes) {
        const int64_t k = start < last ? start : last;
        const Floats a = load<Floats>(real + k - 1) + load<Floats>(imag + k);
        const Floats b = load<Floats>(imag + k - 1) - load<Floats>(real + k);
        const Floats low = untwiddled(interleavedLow(a, b), window + 2 * k);
        const Floats high = untwiddled(interleavedHigh(a, b), window + 2 * k + floatLanes);
        store(bins + 2 * k, low * 0.25f * g);
        store(bins + 2 * k + floatLanes, high * 0.25f * g);
    }
}

bool isPowerOfTwo(double d)
{
    uint64_t bits = 0;
    __builtin_memcpy(&bits, &d, sizeof bits);
    return (bits & 0x000FFFFFFFFFFFFFu) == 0;
}

// For d a power of two all can be done in float, and is done so for whole vectors from the first on as long as the results
// are the same; gives the place of the first that is left. To multiply by 1 / d and round once is the same as to divide in
// double and round then. Where the product is exact, which multiplying back shows, so is the sum with `overlap`: of two
// floats, rounding to double first changes nothing (S. A. Figueroa, "When is double rounding innocuous?", 1995).
int32_t overlapAddInFloat(const float *first, const float *second, float *output, float *overlap,
                          int32_t count, float d)
{
    constexpr int32_t atOnce = 4;
    const float inverse = 1.0f / d;
    int32_t i = 0;
    for (; i <= count - atOnce * floatLanes; i += atOnce * floatLanes) {
        Floats quotient[atOnce];
        Ints isExact = Ints{} - 1;
#pragma GCC unroll 4
        for (int64_t v = 0; v < atOnce; ++v) {
            const auto y = load<Floats>(first + i + v * floatLanes);
            quotient[v] = y * inverse;
            isExact &= quotient[v] * d == y;
        }
        if (!all(isExact))
            break;
#pragma GCC unroll 4
        for (int32_t v = 0; v < atOnce; ++v) {
            const int32_t at = i + v * floatLanes;
            store(output + at, quotient[v] + load<Floats>(overlap + at));
            store(overlap + at, load<Floats>(second + at) * inverse);
        }
    }
    return i;
}

void overlapAdd(const float *first, const float *second, float *output, float *overlap, int32_t count,
                double d)
{
    int32_t i = 0;
    if (isPowerOfTwo(d))
        i = overlapAddInFloat(first, second, output, overlap, count, static_cast<float>(d));
    for (; i <= count - doubleLanes; i += doubleLanes) {
        const Doubles kept = widen(load<HalfFloats>(overlap + i));
        store(output + i, narrow(widen(load<HalfFloats>(first + i)) / d + kept));
        store(overlap + i, narrow(widen(load<HalfFloats>(second + i)) / d));
    }
    kernelsAt<FmcltKernels, Level::plain>().overlapAdd(first + i, second + i, output + i, overlap + i,
                                                       count - i, d);
}

void divide(float *data, int32_t count, float s)
{
    int32_t i = 0;
    for (; i <= count - floatLanes; i += floatLanes)
        store(data + i, load<Floats>(data + i) / s);
    kernelsAt<FmcltKernels, Level::plain>().divide(data + i, count - i, s);
}

} // namespace
} // namespace ORVA_LEVEL

template <> const FmcltKernels &kernelsAt<FmcltKernels, Level::ORVA_LEVEL>()
{
    static constexpr FmcltKernels table = {ORVA_LEVEL::coefficientsOf, ORVA_LEVEL::innerBinsOf,
                                           ORVA_LEVEL::overlapAdd, ORVA_LEVEL::divide};
    return table;
}

} // namespace orva
