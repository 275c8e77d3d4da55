#include "common/lanes.h"
#include "xcorr/kernels/ORVAxcorr_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

constexpr int32_t binsPerVector = floatLanes / 2;

// X conj(Y) of the bins in one vector, x and y being  re im re im ...
//
//     straight    x.re y.re   x.im y.re
//     crossed     x.im y.im   x.re y.im      added to the real parts, taken from the imaginary ones
[[gnu::always_inline]] inline Floats product(const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y)
{
    const auto x = load<Floats>(&X->re);
    const auto y = load<Floats>(&Y->re);
    return x * evensTwice(y) + withOddsNegated(exchanged(x) * oddsTwice(y));
}

void combinePlain(const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y, ORVA_COMPLEX *output, int32_t bins, float s)
{
    int32_t k = 0;
    for (; k <= bins - 2 * binsPerVector; k += 2 * binsPerVector) {
        const Floats low = product(X + k, Y + k) * s;
        const Floats high = product(X + k + binsPerVector, Y + k + binsPerVector) * s;
        store(&output[k].re, low);
        store(&output[k + binsPerVector].re, high);
    }
    kernelsAt<XcorrKernels, Level::plain>().combinePlain(X + k, Y + k, output + k, bins - k, s);
}

// 1 / sqrt(p) for normal p, off by less than 1e-5: Newton's steps from a first guess by halving the exponent.
[[gnu::always_inline]] inline Floats nearlyInverseRoot(Floats p)
{
    const Floats half = 0.5f * p;
    Floats y = reinterpret_cast<Floats>(0x5F3759DF - (reinterpret_cast<Bits>(p) >> 1));
    y = y * (1.5f - half * y * y);
    return y * (1.5f - half * y * y);
}

// g / sqrt(p), off by less than 1e-15 of it, from y near 1 / sqrt(p): with e = 1 - p y^2,
// 1 / sqrt(p) = y (1 - e)^(-1/2) = y (1 + e / 2 + 3/8 e^2 + ...), the next term below 4e-16.
[[gnu::always_inline]] inline Doubles nearlyWeight(Doubles p, Doubles y, double g)
{
    const Doubles e = 1.0 - p * y * y;
    const Doubles near = y * g;
    return near + near * (e * (0.5 + 0.375 * e));
}

// What float(x w) lies between for each x: equal, but for one in millions, and then the float of the exact weight too.
struct Bounds {
    Floats low;
    Floats high;
};

[[gnu::always_inline]] inline Bounds weighted(Floats x, Doubles lowerWeight, Doubles upperWeight)
{
    constexpr double below = 1.0 - 0x1p-46;
    constexpr double above = 1.0 + 0x1p-46;
    const Doubles lower = widen(lowerHalf(x)) * lowerWeight;
    const Doubles upper = widen(upperHalf(x)) * upperWeight;
    return {joined(narrow(lower * below), narrow(upper * below)),
            joined(narrow(lower * above), narrow(upper * above))};
}

// Two vectors of bins at a time, their real and imaginary parts apart:
//
//     re im re im ... | re im re im ...   ->   re re re re ... | im im im im ...   ->  p  ->  w  ->   and back
//
// The weight is not found by a root and a quotient, which take the processor long, but within 1e-14 of them; that settles
// the float of the result. Where it does not, and where the power is no normal number, the plain form decides. No result
// counts for a power of zero.
void combinePhat(const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y, ORVA_COMPLEX *output, int32_t bins, float g)
{
    constexpr float leastNormal = 0x1p-126f;
    constexpr float largest = 0x1.fffffep127f;
    const XcorrKernels &plain = kernelsAt<XcorrKernels, Level::plain>();
    int32_t k = 0;
    for (; k <= bins - floatLanes; k += floatLanes) {
        const Floats low = product(X + k, Y + k);
        const Floats high = product(X + k + binsPerVector, Y + k + binsPerVector);
        const Floats re = evens(low, high);
        const Floats im = odds(low, high);
        const Floats p = re * re + im * im;
        const Ints isZero = p == 0.0f;
        const Floats y = nearlyInverseRoot(p);
        const Doubles lowerWeight = nearlyWeight(widen(lowerHalf(p)), widen(lowerHalf(y)), g);
        const Doubles upperWeight = nearlyWeight(widen(upperHalf(p)), widen(upperHalf(y)), g);
        const Bounds newRe = weighted(re, lowerWeight, upperWeight);
        const Bounds newIm = weighted(im, lowerWeight, upperWeight);
        const Ints isSettled = (newRe.low == newRe.high) & (newIm.low == newIm.high);
        const Ints isNormal = (p >= leastNormal) & (p <= largest);
        if (!all((isSettled & isNormal) | isZero)) {
            plain.combinePhat(X + k, Y + k, output + k, floatLanes, g);
            continue;
        }
        const Floats outRe = isZero ? re : newRe.low;
        const Floats outIm = isZero ? im : newIm.low;
        store(&output[k].re, interleavedLow(outRe, outIm));
        store(&output[k + binsPerVector].re, interleavedHigh(outRe, outIm));
    }
    plain.combinePhat(X + k, Y + k, output + k, bins - k, g);
}

} // namespace
} // namespace ORVA_LEVEL

template <> const XcorrKernels &kernelsAt<XcorrKernels, Level::ORVA_LEVEL>()
{
    static constexpr XcorrKernels table = {ORVA_LEVEL::combinePlain, ORVA_LEVEL::combinePhat};
    return table;
}

} // namespace orva
