// The shapes: one generator each, and the table that names them.
#include "window/ORVAwinfnc_internal.h"

#include <cmath>

static constexpr double twoPi = 6.283185307179586;

// The samples up to the middle, the middle one of an odd length included: floor((N + 1) / 2) without the
// overflow.
static constexpr uint32_t halfLength(uint32_t N)
{
    return N / 2 + N % 2;
}
static_assert(halfLength(4) == 2 && halfLength(5) == 3 && halfLength(4294967295u) == 2147483648u);

static void _retangular(float *w, uint32_t N)
{
    for (uint32_t i = 0; i < N; ++i)
        w[i] = 1.0f;
}

static void _halftriangular(float *w, uint32_t N)
{
    const float last = static_cast<float>(static_cast<double>(N) - 1.0);
    for (uint32_t i = 0; i < N; ++i)
        w[i] = static_cast<float>(i) / last;
}

// H - 1 is the distance to the centre for even lengths only; an odd window overshoots on purpose.
static void _triangular(float *w, uint32_t N)
{
    const uint32_t H = N / 2;
    const double slope = static_cast<double>(static_cast<float>(H)) - 1.0;
    for (uint32_t i = 0; i < halfLength(N); ++i) {
        const float v = static_cast<float>(static_cast<double>(static_cast<float>(i)) / slope);
        w[i] = v;
        w[N - 1 - i] = v;
    }
}

// Fills w[i] and w[N-1-i] with value(p), p = 2 pi i / D. The phase is accumulated, not i * step: the two
// differ in their last bits, and hosts compare them.
template <class Value> static void fillMirrored(float *w, uint32_t N, double D, Value value)
{
    const uint32_t half = halfLength(N);
    if (half == 0)
        return;
    w[0] = static_cast<float>(value(0.0));
    w[N - 1] = w[0];
    const double step = twoPi / D; // D is 0 at N = 1, where no phase is needed
    double p = 0.0 + step;
    for (uint32_t i = 1; i < half; ++i) {
        const float v = static_cast<float>(value(p));
        w[i] = v;
        w[N - 1 - i] = v;
        p = p + step;
    }
}

static void _hanning(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, [](double p) { return (1.0 - std::cos(p)) * 0.5; });
}

static void _hanning_periodic(float *w, uint32_t N)
{
    if (N == 0)
        return;
    const double step = twoPi / static_cast<double>(N);
    w[0] = 0.0f;
    double p = 0.0 + step;
    for (uint32_t i = 1; i < N; ++i) {
        w[i] = static_cast<float>(0.5 - 0.5 * std::cos(p));
        p = p + step;
    }
}

static void _hamming(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, [](double p) { return 0.54 - 0.46 * std::cos(p); });
}

// Divides by N, unlike its neighbours, and is mirrored all the same.
static void _blackman(float *w, uint32_t N)
{
    fillMirrored(w, N, N, [](double p) { return 0.42 - 0.5 * std::cos(p) + 0.08 * std::cos(p + p); });
}

static void _blackman_harris(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, [](double p) {
        return 0.35875 - 0.48829 * std::cos(p) + 0.14128 * std::cos(p + p) - 0.01168 * std::cos(p * 3.0);
    });
}

static void _blackman_nuttall(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, [](double p) {
        return 0.355768 - 0.487396 * std::cos(p) + 0.144232 * std::cos(p + p) - 0.012604 * std::cos(p * 3.0);
    });
}

static void _nuttal(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, [](double p) {
        return 0.3635819 - 0.4891775 * std::cos(p) + 0.1365995 * std::cos(p + p) -
               0.0106411 * std::cos(p * 3.0);
    });
}

// Not scaled to a peak of one.
static void _flap_top(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, [](double p) {
        return 1.0 - 1.93 * std::cos(p) + 1.29 * std::cos(p + p) - 0.388 * std::cos(p * 3.0) +
               0.028 * std::cos(p * 4.0);
    });
}

// Names and their spelling are what hosts write in configuration strings.
const WindowDef _WinDefTable[windowCount] = {
    {0, "Rectangular", 1.0, _retangular},
    {1, "Triangular", 0.5, _triangular},
    {2, "Half-Triangular", 0.5, _halftriangular},
    {3, "Hanning", 0.5009765625, _hanning},
    {4, "Hanning-Periodic", 0.5009765625, _hanning_periodic},
    {5, "Hamming", 0.5391015625, _hamming},
    {6, "Blackman", 0.41671875, _blackman},
    {7, "Blackman-Harris", 0.41671875, _blackman_harris},
    {8, "Blackman-Nuttall", 0.41671875, _blackman_nuttall},
    {9, "Nuttal", 0.41671875, _nuttal},
    {10, "Flat-Top", 0.41671875, _flap_top},
};
