// The polyphase filter: its prototype, a windowed sinc, and the bank that it is sorted into.
#include "common/memory.h"
#include "common/numbers.h"
#include "resample/ORVAresample_polyphase.h"

#include <algorithm>
#include <cmath>
#include <limits>

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

// The bank without its coefficients, and their number.
struct Layout {
    PolyphaseBank bank;
    int64_t size;
    int64_t origin; // of the coefficients, ahead of which stand zeros
};

Layout inGroups(int64_t length, int32_t L, int32_t M)
{
    const int64_t taps = quotientUp(length, L);
    const int64_t rows =
        taps + quotientUp((groupLanes - 1) * int64_t{M}, L); // no two outputs are further apart
    const int64_t size = quotientUp(L, groupLanes) * rows * groupLanes;
    return {.bank = {.coefs = nullptr,
                     .pitch = groupLanes,
                     .groupSize = rows * groupLanes,
                     .rows = std::numeric_limits<int32_t>::max(),
                     .groupRows = static_cast<int32_t>(rows),
                     .round = L,
                     .up = L,
                     .down = M,
                     .taps = static_cast<int32_t>(taps),
                     .isWide = true},
            .size = size,
            .origin = 0};
}

// From a row to the next: the coefficients of the longest; zeros for the last groups that take its sample, whose outputs
// reach 2 L - 1 + 7 M out of h; and what the next row begins earlier. An odd number spreads the rows over a cache.
Layout inRows(int64_t length, int32_t L, int32_t M, int32_t lanes)
{
    const int64_t taps = quotientUp(length, L);
    const int64_t zeros = lanes - 1 + (lanes > 1 ? 2 : 1) * quotientUp(L, M); // a single output reaches L - 1
    const int64_t pitch = (quotientUp(length, M) + zeros + quotientUp(L, M)) | 1;
    const bool single = M == 1;
    return {.bank = {.coefs = nullptr,
                     .pitch = single ? L : pitch,
                     .groupSize = 0,
                     .rows = single ? std::numeric_limits<int32_t>::max() : M,
                     .groupRows = static_cast<int32_t>(taps + quotientUp((lanes - 1) * int64_t{M}, L)),
                     .round = L / greatestCommonDivisor(L, lanes) * lanes,
                     .up = L,
                     .down = M,
                     .taps = static_cast<int32_t>(taps),
                     .isWide = lanes == groupLanes},
            .size = lanes - 1 + M * pitch,
            .origin = lanes - 1};
}

// The first that keeps the coefficients within twice those of the phases and the pointers to them.
Layout layoutFor(int64_t length, int32_t L, int32_t M)
{
    const int64_t most = 2 * (quotientUp(length, L) + 1) * L;
    if (L >= groupLanes)
        if (const Layout groups = inGroups(length, L, M); groups.size <= most)
            return groups;
    const Layout rows = inRows(length, L, M, groupLanes);
    return rows.size <= most ? rows : inRows(length, L, M, 1);
}

void fillGroups(double *coefs, const PolyphaseBank &bank, const double *h, int64_t length)
{
    for (int32_t group = 0; group < groupCount(bank); ++group) {
        for (int32_t lane = 0; lane < groupLanes; ++lane) {
            const int64_t first = groupStart(bank, group);
            const int64_t newest = newestSample(bank, first + groupLanes - 1);
            for (int64_t row = 0; row < bank.groupRows; ++row) {
                const int64_t k = (first + lane) * bank.down - (newest - row) * bank.up;
                if (k >= 0 && k < length)
                    coefs[group * bank.groupSize + row * groupLanes + lane] = h[k];
            }
        }
    }
}

// H(s, c) = h[c M + s L]
void fillRows(double *coefs, const PolyphaseBank &bank, const double *h, int64_t length)
{
    const int64_t L = bank.up;
    const int64_t M = bank.down;
    for (int64_t s = 0; s < M; ++s)
        for (int64_t c = -(s * L / M); c * M + s * L < length; ++c)
            coefs[s * bank.pitch + c] = h[c * M + s * L];
}

// So that a vector of eight doubles is one of a cache's lines.
double *aligned(double *coefs)
{
    constexpr uintptr_t line = 64;
    return reinterpret_cast<double *>((reinterpret_cast<uintptr_t>(coefs) + line - 1) / line * line);
}

constexpr size_t alignmentRoom = 7;

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
    const int32_t common = greatestCommonDivisor(inputRate, outputRate);
    const int32_t L = outputRate / common;
    const int32_t M = inputRate / common;
    const int64_t bytes = polyphaseDesignBytes(order, L, M);
    if (bytes < 0 || bytes > maxDesignBytes)
        return nullptr;
    const auto N = static_cast<int32_t>(prototypeOrder(order, L, M));
    const int32_t length = N + 1;
    const auto taps = static_cast<int32_t>(quotientUp(length, L));
    const Layout layout = layoutFor(length, L, M);
    const int32_t history = layout.bank.groupRows;
    const int32_t ahead = history - taps;

    auto resampler = ownZeroed<PolyphaseResampler>(1);
    const auto h = ownZeroed<double>(static_cast<size_t>(length));
    auto coefs = ownZeroed<double>(static_cast<size_t>(layout.size) + alignmentRoom);
    auto work = ownZeroed<double>(2 * static_cast<size_t>(history) + static_cast<size_t>(ahead));
    if (resampler == nullptr || h == nullptr || coefs == nullptr || work == nullptr)
        return nullptr;

    designPrototype(h.get(), N, L, M);
    double *origin = aligned(coefs.get()) + layout.origin;
    resampler->bank = layout.bank;
    resampler->bank.coefs = origin;
    if (layout.bank.groupSize != 0)
        fillGroups(origin, layout.bank, h.get(), length);
    else
        fillRows(origin, layout.bank, h.get(), length);
    resampler->upFactor = L;
    resampler->downFactor = M;
    resampler->tapsPerPhase = taps;
    resampler->delay = polyphaseDelay(N, M);
    resampler->delayToSkip = compensates ? resampler->delay : 0;
    resampler->history = history;
    resampler->ahead = ahead;
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
