// The polyphase filter: its prototype, a windowed sinc, and the bank that it is sorted into.
#include "common/memory.h"
#include "common/numbers.h"
#include "resample/ORVAresample_polyphase.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace orva
{
namespace
{

int64_t prototypeOrder(int32_t order, int32_t upFactor, int32_t downFactor)
{
    return 2 * int64_t{order} * std::max(upFactor, downFactor);
}

int64_t quotientUp(int64_t a, int64_t b)
{
    return (a + b - 1) / b;
}

// With c = 0.95 min(pi / M, pi / L), for i = 0 .. N/2 - 1 and t = i - N/2:
//
//     h[i] = h[N - i] = sin(c t) / (t pi) * L w(i)
//     w(i) = 0.42 - 0.5 cos(2 pi i / (N + 1)) + 0.08 cos(4 pi i / (N + 1))
//
// The window's period is N + 1 and not N, so it does not peak at the centre; copying makes h symmetric all
// the same. That is deliberate, and all coefficients depend on it.
void designPrototype(double *h, int32_t N, int32_t L, int32_t M)
{
    constexpr double fourPi = 12.566370614359172;
    const double c = 0.95 * std::min(pi / M, pi / L);
    const double half = N * 0.5;
    const double length = N + 1;
    for (int32_t i = 0; i < N / 2; ++i) {
        const double t = i - half;
        const double s = std::sin(c * t);
        const double w = (0.42 - 0.5 * std::cos(i * twoPi / length)) + 0.08 * std::cos(i * fourPi / length);
        h[i] = h[N - i] = (s / (t * pi)) * (w * L);
    }
    // The limit of the sinc, without the window; the quotient is deliberately one of floats.
    const float quotient = static_cast<float>(L) / static_cast<float>(M);
    h[N / 2] = L > M ? 0.95 : static_cast<double>(quotient) * 0.95;
}

// From the first coefficient of a row to that of the next: the coefficients of the longest row; zeros for the last group
// that takes its samples, whose outputs reach L - 1 + (lanes - 1) M out of h; and what the next row begins earlier. An odd
// number spreads the rows over a cache.
int64_t pitchOf(int64_t length, int32_t L, int32_t M, int32_t lanes)
{
    return (quotientUp(length, M) + lanes - 1 + 2 * quotientUp(L, M)) | 1;
}

// Ahead of the first row stand the zeros of a group whose last output alone takes its newest sample.
int64_t bankSize(int64_t length, int32_t L, int32_t M, int32_t lanes)
{
    return lanes - 1 + M * pitchOf(length, L, M, lanes);
}

// As wide a group as keeps the bank within twice the phases and the pointers to them.
int32_t lanesFor(int64_t length, int64_t taps, int32_t L, int32_t M)
{
    for (const int32_t lanes : {16, 8})
        if (bankSize(length, L, M, lanes) <= 2 * (taps + 1) * L)
            return lanes;
    return 1;
}

// H(s, c) = h[c M + s L]
void fillBank(double *origin, const PolyphaseBank &bank, const double *h, int64_t length)
{
    const int64_t L = bank.up;
    const int64_t M = bank.down;
    for (int64_t s = 0; s < M; ++s) {
        const int64_t first = -(s * L / M);
        for (int64_t c = first; c * M + s * L < length; ++c)
            origin[s * bank.pitch + c] = h[c * M + s * L];
    }
}

} // namespace

int64_t polyphaseDesignBytes(int32_t order, int32_t upFactor, int32_t downFactor)
{
    const int64_t length = prototypeOrder(order, upFactor, downFactor) + 1;
    if (length > std::numeric_limits<int32_t>::max())
        return -1;
    const int64_t taps = quotientUp(length, upFactor);
    const int64_t doubles = length + taps * upFactor + taps; // prototype, phases, delay line
    return doubles * int64_t{sizeof(double)} + upFactor * int64_t{sizeof(double *)};
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
    const auto taps = static_cast<int32_t>(quotientUp(length, L));
    const int32_t lanes = lanesFor(length, taps, L, M);
    const auto history = static_cast<int32_t>(taps + (lanes - 1) * int64_t{M} / L);

    auto resampler = ownZeroed<PolyphaseResampler>(1);
    const auto h = ownZeroed<double>(static_cast<size_t>(length));
    auto coefs = ownZeroed<double>(static_cast<size_t>(bankSize(length, L, M, lanes)));
    auto work = ownZeroed<double>(2 * static_cast<size_t>(history));
    if (resampler == nullptr || h == nullptr || coefs == nullptr || work == nullptr)
        return nullptr;

    // A single row never comes round: going on to an older sample is going L columns on, as between rows.
    const bool single = M == 1;
    double *origin = coefs.get() + lanes - 1;
    resampler->bank = {.origin = origin,
                       .pitch = single ? L : pitchOf(length, L, M, lanes),
                       .rows = single ? std::numeric_limits<int32_t>::max() : M,
                       .up = L,
                       .down = M,
                       .taps = taps,
                       .lanes = lanes};
    designPrototype(h.get(), N, L, M);
    fillBank(origin, resampler->bank, h.get(), length);
    resampler->upFactor = L;
    resampler->downFactor = M;
    resampler->tapsPerPhase = taps;
    resampler->delay = polyphaseDelay(N, M);
    resampler->delayToSkip = compensates ? resampler->delay : 0;
    resampler->history = history;
    resampler->workCapacity = history;
    resampler->end = history;
    resampler->finiteSamples = history;
    resampler->coefs = coefs.release();
    resampler->work = work.release();
    return resampler.release();
}

void freePolyphase(PolyphaseResampler *resampler)
{
    if (resampler == nullptr)
        return;
    std::free(resampler->coefs);
    std::free(resampler->work);
    std::free(resampler);
}

} // namespace orva
