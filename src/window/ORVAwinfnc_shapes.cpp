// The shapes: one generator each, and the table that names them.
#include "window/ORVAwinfnc_internal.h"

#include "common/numbers.h"
#include "window/kernels/ORVAwindow_kernels.h"

#include <algorithm>

namespace orva
{
namespace
{

// The samples up to the middle, the middle one of an odd length included: floor((N + 1) / 2) without the overflow.
constexpr uint32_t halfLength(uint32_t N)
{
    return N / 2 + N % 2;
}
static_assert(halfLength(4) == 2 && halfLength(5) == 3 && halfLength(4294967295u) == 2147483648u);

void _retangular(float *w, uint32_t N)
{
    for (uint32_t i = 0; i < N; ++i)
        w[i] = 1.0f;
}

void _halftriangular(float *w, uint32_t N)
{
    const float last = static_cast<float>(static_cast<double>(N) - 1.0);
    for (uint32_t i = 0; i < N; ++i)
        w[i] = static_cast<float>(i) / last;
}

// H - 1 is the distance to the centre for even lengths only; an odd window overshoots deliberately.
void _triangular(float *w, uint32_t N)
{
    const uint32_t H = N / 2;
    const double slope = static_cast<double>(static_cast<float>(H)) - 1.0;
    for (uint32_t i = 0; i < halfLength(N); ++i) {
        const float v = static_cast<float>(static_cast<double>(static_cast<float>(i)) / slope);
        w[i] = v;
        w[N - 1 - i] = v;
    }
}

// w[i] = w[N-1-i] = the sum at p = 2 pi i / D, the phase accumulated.
void fillMirrored(float *w, uint32_t N, double D, const CosineSum &sum)
{
    const uint32_t half = halfLength(N);
    kernels<WindowKernels>().fill(sum, twoPi / D, w, half); // D is 0 at N = 1, where the one phase is 0
    std::reverse_copy(w, w + N / 2, w + half);
}

// (1 - cos(p)) / 2 in the same bits, since halving is exact.
constexpr CosineSum hann = {2, {0.5, -0.5}};

void _hanning(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, hann);
}

// A whole turn in N samples, not mirrored.
void _hanning_periodic(float *w, uint32_t N)
{
    kernels<WindowKernels>().fill(hann, twoPi / N, w, N);
}

void _hamming(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, {2, {0.54, -0.46}});
}

// Divides by N, unlike its neighbours, and is mirrored all the same.
void _blackman(float *w, uint32_t N)
{
    fillMirrored(w, N, N, {3, {0.42, -0.5, 0.08}});
}

void _blackman_harris(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, {4, {0.35875, -0.48829, 0.14128, -0.01168}});
}

void _blackman_nuttall(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, {4, {0.355768, -0.487396, 0.144232, -0.012604}});
}

void _nuttal(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, {4, {0.3635819, -0.4891775, 0.1365995, -0.0106411}});
}

// Not scaled to a peak of one.
void _flap_top(float *w, uint32_t N)
{
    fillMirrored(w, N, N - 1.0, {5, {1.0, -1.93, 1.29, -0.388, 0.028}});
}

// Names and their spelling are what hosts write in configuration strings.
constexpr WindowDef _WinDefTable[] = {
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

} // namespace

std::span<const WindowDef> windows()
{
    return _WinDefTable;
}

} // namespace orva
