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

// The bins that are weighted together, their parts apart. Within each four bins of two vectors their order is changed, which
// does no harm and is quick:
//
//     r0 i0 r1 i1 ... | r4 i4 r5 i5 ...   <->   r0 r1 r4 r5 ... | i0 i1 i4 i5 ...
struct Block {
    static constexpr int32_t most = 256;
    alignas(64) float re[most];
    alignas(64) float im[most];
    alignas(64) float halfPower[most];
    alignas(64) float inverseRoot[most];
};

// The products, half their powers p, and y near 1 / sqrt(p), off by 5e-7 of it at most: from a guess that halves the exponent,
// two of Newton's steps with factors fitted to the guess. False where a power is zero, not finite or so low that its half is
// not exact.
bool multiply(Block &block, int32_t bins, const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y)
{
    constexpr float least = 0x1p-125f;
    constexpr float largest = 0x1.fffffep127f;
    Ints isGood = Ints{} - 1;
    for (int32_t k = 0; k < bins; k += floatLanes) {
        const Floats low = product(X + k, Y + k);
        const Floats high = product(X + k + binsPerVector, Y + k + binsPerVector);
        const Floats re = groupedEvens(low, high);
        const Floats im = groupedOdds(low, high);
        const Floats p = re * re + im * im;
        const Floats half = 0.5f * p;
        const Floats guess = reinterpret_cast<Floats>(0x5F1FFFF9 - (reinterpret_cast<Bits>(p) >> 1));
        const Floats near =
            guess * (0.703952253f * 2.38924456f - 2.0f * 0.703952253f * (half * guess * guess));
        store(block.re + k, re);
        store(block.im + k, im);
        store(block.halfPower + k, half);
        store(block.inverseRoot + k, near * (1.50000036f - half * near * near));
        isGood &= (p >= least) & (p <= largest);
    }
    return all(isGood);
}

// The weight g / sqrt(p) is not found by a root and a quotient, which take long, but within 4e-13 of it:
//
//     1 / sqrt(p) = y (1 - e)^(-1/2) = y (1 + e / 2 + ...),   e = 1 - p y^2
//
// Each part is multiplied by a weight too small and by one too large by a little more than that. But for one part in 60000
// both give the same float, which is then that of the exact weight as well. False where they do not.
bool weigh(const Block &block, int32_t bins, double g, ORVA_COMPLEX *output)
{
    const double below = g * (1.0 - 0x1p-41);
    const double above = g * (1.0 + 0x1p-41);
    HalfInts isSame = HalfInts{} - 1;
    for (int32_t k = 0; k < bins; k += floatLanes) {
        HalfFloats newRe[2], newIm[2];
#pragma GCC unroll 2
        for (int32_t half = 0; half < 2; ++half) {
            const int32_t at = k + half * doubleLanes;
            const Doubles y = widen(load<HalfFloats>(block.inverseRoot + at));
            const Doubles root = y + y * (0.5 - widen(load<HalfFloats>(block.halfPower + at)) * y * y);
            const Doubles lower = root * below;
            const Doubles upper = root * above;
            const Doubles re = widen(load<HalfFloats>(block.re + at));
            const Doubles im = widen(load<HalfFloats>(block.im + at));
            newRe[half] = narrow(re * lower);
            newIm[half] = narrow(im * lower);
            isSame &= (newRe[half] == narrow(re * upper)) & (newIm[half] == narrow(im * upper));
        }
        const Floats re = joined(newRe[0], newRe[1]);
        const Floats im = joined(newIm[0], newIm[1]);
        store(&output[k].re, groupedLow(re, im));
        store(&output[k + binsPerVector].re, groupedHigh(re, im));
    }
    return all(isSame);
}

void storeProducts(const Block &block, int32_t bins, ORVA_COMPLEX *output)
{
    for (int32_t k = 0; k < bins; k += floatLanes) {
        const auto re = load<Floats>(block.re + k);
        const auto im = load<Floats>(block.im + k);
        store(&output[k].re, groupedLow(re, im));
        store(&output[k + binsPerVector].re, groupedHigh(re, im));
    }
}

// Step by step for all bins of a block, so that many of them are under way together. Where a step says no, the products of
// the block are weighed plainly.
void combinePhat(const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y, ORVA_COMPLEX *output, int32_t bins, float g)
{
    Block block;
    int32_t k = 0;
    while (k <= bins - floatLanes) {
        const int32_t left = (bins - k) / floatLanes * floatLanes;
        const int32_t count = left < Block::most ? left : Block::most;
        if (!multiply(block, count, X + k, Y + k) ||
            !weigh(block, count, static_cast<double>(g), output + k)) {
            storeProducts(block, count, output + k);
            weighPlainly(output + k, count, g);
        }
        k += count;
    }
    kernelsAt<XcorrKernels, Level::plain>().combinePhat(X + k, Y + k, output + k, bins - k, g);
}

} // namespace
} // namespace ORVA_LEVEL

template <> const XcorrKernels &kernelsAt<XcorrKernels, Level::ORVA_LEVEL>()
{
    static constexpr XcorrKernels table = {ORVA_LEVEL::combinePlain, ORVA_LEVEL::combinePhat};
    return table;
}

} // namespace orva
