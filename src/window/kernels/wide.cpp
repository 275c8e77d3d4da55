#include "common/lanes.h"
#include "common/numbers.h"
#include "window/kernels/ORVAwindow_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

// Where the window lies before the data and reaches into it, a sample read may be one that has been written.
bool readsResults(const float *window, const float *data, int32_t length)
{
    const auto distance = reinterpret_cast<uintptr_t>(data) - reinterpret_cast<uintptr_t>(window);
    return distance != 0 && distance < static_cast<uintptr_t>(length) * sizeof(float);
}

void apply(const float *window, float *data, int32_t length)
{
    constexpr int32_t atOnce = 4;
    int32_t i = 0;
    if (length > 0 && !readsResults(window, data, length)) {
        for (; i <= length - atOnce * floatLanes; i += atOnce * floatLanes) {
#pragma GCC unroll 4
            for (int32_t v = 0; v < atOnce; ++v) {
                const int32_t at = i + v * floatLanes;
                store(data + at, load<Floats>(data + at) * load<Floats>(window + at));
            }
        }
        for (; i <= length - floatLanes; i += floatLanes)
            store(data + i, load<Floats>(data + i) * load<Floats>(window + i));
    }
    kernelsAt<WindowKernels, Level::plain>().apply(window + i, data + i, length - i);
}

// cos(p) for 0 <= p <= 2 pi, off by less than 2e-15: with q = (p - pi) / 4, cos(p) = -cos(4q), and
//
//     cos(q) = 1 - q^2 / 2! + q^4 / 4! - ... + q^16 / 16!        |q| <= pi / 4
//     cos(2q) = 2 cos(q)^2 - 1
[[gnu::always_inline]] inline Doubles cosine(Doubles p)
{
    constexpr double factors[] = {-1.0 / 87178291200, 1.0 / 479001600, -1.0 / 3628800, 1.0 / 40320,
                                  -1.0 / 720,         1.0 / 24,        -1.0 / 2,       1.0};
    const Doubles q = (p - pi) * 0.25;
    const Doubles square = q * q;
    Doubles c = allLanes<Doubles>(1.0 / 20922789888000);
#pragma GCC unroll 8
    for (const double factor : factors)
        c = c * square + factor;
    c = (c + c) * c - 1.0;
    return 1.0 - (c + c) * c;
}

// The sum at each phase, off by less than 3e-14. With T[k] = cos(k p):  T[k+1] = 2 cos(p) T[k] - T[k-1].
template <int32_t count> [[gnu::always_inline]] inline Doubles nearlySum(const CosineSum &sum, Doubles p)
{
    const Doubles c = cosine(p);
    Doubles before = allLanes<Doubles>(1.0), now = c;
    Doubles value = sum.a[0] + sum.a[1] * c;
#pragma GCC unroll 4
    for (int32_t k = 2; k < count; ++k) {
        const Doubles next = (c + c) * now - before;
        before = now;
        now = next;
        value = value + sum.a[k] * now;
    }
    return value;
}

// A block of phases is accumulated one by one; their sums are then found within a margin, many at a time:
//
//     phases   p0 p1 p2 p3 | p4 p5 p6 p7 | ...
//     low      float(sum - margin)              equal for nearly all: whatever lies between has that float too,
//     high     float(sum + margin)              the sum of the platform's cosines included, which are right to 1e-14
//
// Where low and high part, the platform's cosines decide.
template <int32_t terms> void fillOf(const CosineSum &sum, double step, float *w, uint32_t count)
{
    constexpr uint32_t blockLength = 64;
    constexpr double margin = 1e-13;
    double phases[blockLength];
    float low[blockLength];
    float high[blockLength];
    double p = 0.0;
    for (uint32_t start = 0; start < count; start += blockLength) {
        for (double &phase : phases) {
            phase = p;
            p = p + step;
        }
        for (uint32_t i = 0; i < blockLength; i += doubleLanes) {
            const Doubles value = nearlySum<terms>(sum, load<Doubles>(phases + i));
            store(low + i, narrow(value - margin));
            store(high + i, narrow(value + margin));
        }
        const uint32_t left = count - start < blockLength ? count - start : blockLength;
        for (uint32_t i = 0; i < left; ++i)
            w[start + i] = low[i] == high[i] ? low[i] : static_cast<float>(cosineSumAt(sum, phases[i]));
    }
}

void fill(const CosineSum &sum, double step, float *w, uint32_t count)
{
    switch (sum.count) {
    case 2:
        return fillOf<2>(sum, step, w, count);
    case 3:
        return fillOf<3>(sum, step, w, count);
    case 4:
        return fillOf<4>(sum, step, w, count);
    default:
        return fillOf<5>(sum, step, w, count);
    }
}

} // namespace
} // namespace ORVA_LEVEL

template <> const WindowKernels &kernelsAt<WindowKernels, Level::ORVA_LEVEL>()
{
    static constexpr WindowKernels table = {ORVA_LEVEL::apply, ORVA_LEVEL::fill};
    return table;
}

} // namespace orva
