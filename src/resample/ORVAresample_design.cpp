// The polyphase filter: its prototype, a windowed sinc, and the phases that it is sorted into.
#include "resample/ORVAresample_internal.h"

#include <algorithm>
#include <cmath>
#include <limits>

static int64_t prototypeOrder(int32_t order, int32_t upFactor, int32_t downFactor)
{
    return 2 * int64_t{order} * std::max(upFactor, downFactor);
}

static int64_t tapsOf(int64_t length, int32_t upFactor)
{
    return length / upFactor + (length % upFactor != 0 ? 1 : 0);
}

int64_t polyphaseDesignBytes(int32_t order, int32_t upFactor, int32_t downFactor)
{
    const int64_t length = prototypeOrder(order, upFactor, downFactor) + 1;
    if (length > std::numeric_limits<int32_t>::max())
        return -1;
    const int64_t taps = tapsOf(length, upFactor);
    const int64_t doubles = length + taps * upFactor + taps; // prototype, phases, ring
    return doubles * int64_t{sizeof(double)} + upFactor * int64_t{sizeof(double *)};
}

// With c = 0.95 min(pi / M, pi / L), for i = 0 .. N/2 - 1 and t = i - N/2:
//
//     h[i] = h[N - i] = sin(c t) / (t pi) * L w(i)
//     w(i) = 0.42 - 0.5 cos(2 pi i / (N + 1)) + 0.08 cos(4 pi i / (N + 1))
//
// The window's period is N + 1 and not N, so it does not peak at the centre; copying makes h symmetric all
// the same. That is meant, and all coefficients depend on it.
static void designPrototype(double *h, int32_t N, int32_t L, int32_t M)
{
    constexpr double pi = 3.141592653589793, twoPi = 6.283185307179586, fourPi = 12.566370614359172;
    const double c = 0.95 * std::min(pi / M, pi / L);
    const double half = N * 0.5;
    const double length = N + 1;
    for (int32_t i = 0; i < N / 2; ++i) {
        const double t = i - half;
        const double s = std::sin(c * t);
        const double w = (0.42 - 0.5 * std::cos(i * twoPi / length)) + 0.08 * std::cos(i * fourPi / length);
        h[i] = h[N - i] = (s / (t * pi)) * (w * L);
    }
    // The limit of the sinc, without the window; the quotient is one of floats, and meant.
    const float quotient = static_cast<float>(L) / static_cast<float>(M);
    h[N / 2] = L > M ? 0.95 : static_cast<double>(quotient) * 0.95;
}

// One block for all phases, which the first of them owns.
static bool allocate(PolyphaseResampler *resampler)
{
    const int32_t taps = resampler->tapsPerPhase;
    const int32_t count = resampler->upFactor;
    resampler->ring = newZeroed<double>(taps);
    resampler->phases = newZeroed<double *>(count);
    if (resampler->ring == nullptr || resampler->phases == nullptr)
        return false;
    resampler->phases[0] = newZeroed<double>(int64_t{count} * taps);
    if (resampler->phases[0] == nullptr)
        return false;
    for (int32_t p = 1; p < count; ++p)
        resampler->phases[p] = resampler->phases[p - 1] + taps;
    return true;
}

// phases[p][j] = h[p + j L]
static void sortIntoPhases(PolyphaseResampler *resampler, const double *h, int32_t length)
{
    const int32_t L = resampler->upFactor;
    for (int32_t p = 0; p < L; ++p)
        for (int64_t j = 0; p + j * L < length; ++j)
            resampler->phases[p][j] = h[p + j * L];
}

int32_t polyphaseDelay(int32_t prototypeOrder, int32_t downFactor)
{
    const auto step = static_cast<float>(downFactor);
    return static_cast<int32_t>(std::round(static_cast<float>(prototypeOrder) / (step + step)));
}

PolyphaseResampler *newPolyphase(int32_t inputRate, int32_t outputRate, int32_t order, bool compensates)
{
    const int32_t common = std::gcd(inputRate, outputRate);
    const int32_t L = outputRate / common;
    const int32_t M = inputRate / common;
    const int64_t bytes = polyphaseDesignBytes(order, L, M);
    if (bytes < 0 || bytes > maxDesignBytes)
        return nullptr;
    const auto N = static_cast<int32_t>(prototypeOrder(order, L, M));
    const int32_t length = N + 1;

    auto *resampler = newZeroed<PolyphaseResampler>(1);
    auto *h = newZeroed<double>(length);
    bool complete = resampler != nullptr && h != nullptr;
    if (complete) {
        resampler->upFactor = L;
        resampler->downFactor = M;
        resampler->tapsPerPhase = static_cast<int32_t>(tapsOf(length, L));
        resampler->delay = polyphaseDelay(N, M);
        resampler->delayToSkip = compensates ? resampler->delay : 0;
        complete = allocate(resampler);
    }
    if (complete) {
        designPrototype(h, N, L, M);
        sortIntoPhases(resampler, h, length);
    }
    std::free(h);
    if (complete)
        return resampler;
    freePolyphase(resampler);
    return nullptr;
}

void freePolyphase(PolyphaseResampler *resampler)
{
    if (resampler == nullptr)
        return;
    if (resampler->phases != nullptr)
        std::free(resampler->phases[0]);
    std::free(resampler->phases);
    std::free(resampler->ring);
    std::free(resampler->work);
    std::free(resampler);
}
