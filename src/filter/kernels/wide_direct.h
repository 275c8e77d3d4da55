// The direct form over vectors of floats. A pass runs neighbouring channels, a row of lanes that they fill or nearly fill,
// and goes through the frames in chunks over a line of rows, the history first:
//
//     w[-order] ... w[-2] w[-1] | w[0] w[1] w[2] ... w[frames-1]            each w a row of lanes
//
// The rows of a chunk hold x until the recursion has gone over them. It waits for itself, row after row. The numerator does
// not, and takes the line as if it had no rows: neighbouring lanes, be they channels or frames.
//     w[n] = x[n] - sum(k = 1 .. denOrder) a(k) w[n-k]
//     y[n] = sum(k = 1 .. numOrder) b(k) w[n-k] + b(0) w[n]
#pragma once

#include "common/lanes.h"
#include "filter/kernels/ORVAfilter_kernels.h"

namespace orva::ORVA_LEVEL
{
namespace
{

using Float2 [[gnu::vector_size(8)]] = float;

constexpr int64_t chunkFloats = 512;
constexpr int64_t historyFloats = 1536;

constexpr uint64_t bytesOfFloat = sizeof(float);
template <class Group> constexpr int64_t lanesOf = sizeof(Group) / bytesOfFloat;

struct DirectPass {
    const _DFIIstate &state;
    const Frames &frames;
    int64_t frameCount; // 1 or more
    size_t channel;
    int64_t channels; // 1 to the lanes of a row
};

// The place in the ring of the frame `back` frames before the first of the call; below zero, after it.
float *ringRow(const DirectPass &pass, int64_t back)
{
    const int64_t rows = int64_t{pass.state.order} + 1;
    const int64_t row = ((pass.state.position + back) % rows + rows) % rows;
    return pass.state.memory + static_cast<size_t>(row) * pass.frames.channels + pass.channel;
}

// `channels` floats, more than half of `lanes`: as two halves that may overlap, since a count that the compiler knows is
// copied at once.
template <int64_t lanes>
[[gnu::always_inline]] inline void copyRow(const float *from, int64_t channels, float *to)
{
    constexpr int64_t half = lanes - lanes / 2;
    __builtin_memcpy(to, from, half * bytesOfFloat);
    __builtin_memcpy(to + channels - half, from + channels - half, half * bytesOfFloat);
}

// Rows from frames. Lanes without a channel become zero.
template <int64_t lanes>
void takeRows(const float *from, int64_t stride, int64_t channels, float *rows, int64_t count)
{
    for (int64_t n = 0; n < count; ++n, from += stride, rows += lanes) {
        __builtin_memset(rows + lanes / 2, 0, (lanes - lanes / 2) * bytesOfFloat);
        copyRow<lanes>(from, channels, rows);
    }
}

template <int64_t lanes>
void giveRows(const float *rows, int64_t count, float *to, int64_t stride, int64_t channels)
{
    for (int64_t n = 0; n < count; ++n, rows += lanes, to += stride)
        copyRow<lanes>(rows, channels, to);
}

template <class Group, int64_t groups> void recurse(const _DFIIstate &state, float *w, int64_t rows)
{
    constexpr int64_t lanesOfGroup = lanesOf<Group>;
    constexpr int64_t lanes = groups * lanesOfGroup;
    const int64_t order = state.denOrder;
    const float *const a = state.denominator;
    if (order == 0)
        return;
    Group last[groups]; // the row before this one, which need not wait for its way through memory
#pragma GCC unroll 2
    for (int64_t g = 0; g < groups; ++g)
        last[g] = load<Group>(w - lanes + g * lanesOfGroup);
    for (int64_t n = 0; n < rows; ++n, w += lanes) {
        Group current[groups];
#pragma GCC unroll 2
        for (int64_t g = 0; g < groups; ++g)
            current[g] = load<Group>(w + g * lanesOfGroup) - a[0] * last[g];
        const float *older = w - 2 * lanes;
        for (int64_t k = 1; k < order; ++k, older -= lanes) {
#pragma GCC unroll 2
            for (int64_t g = 0; g < groups; ++g)
                current[g] -= a[k] * load<Group>(older + g * lanesOfGroup);
        }
#pragma GCC unroll 2
        for (int64_t g = 0; g < groups; ++g) {
            store(w + g * lanesOfGroup, current[g]);
            last[g] = current[g];
        }
    }
}

// `count` vectors of y, whose chains of sums overlap.
template <class Group, int64_t count>
[[gnu::always_inline]] inline void weigh(const _DFIIstate &state, const float *w, int64_t lanes, float *y)
{
    constexpr int64_t lanesOfGroup = lanesOf<Group>;
    Group sum[count] = {};
    const float *older = w - lanes;
    for (int64_t k = 0; k < state.numOrder; ++k, older -= lanes) {
#pragma GCC unroll 4
        for (int64_t v = 0; v < count; ++v)
            sum[v] += state.numerator[k] * load<Group>(older + v * lanesOfGroup);
    }
#pragma GCC unroll 4
    for (int64_t v = 0; v < count; ++v)
        store(y + v * lanesOfGroup, sum[v] + load<Group>(w + v * lanesOfGroup) * state.gain);
}

void weighAll(const _DFIIstate &state, const float *w, int64_t lanes, float *y, int64_t floats)
{
    constexpr int64_t vector = floatLanes;
    int64_t i = 0;
    for (; i <= floats - 4 * vector; i += 4 * vector)
        weigh<Floats, 4>(state, w + i, lanes, y + i);
    for (; i <= floats - vector; i += vector)
        weigh<Floats, 1>(state, w + i, lanes, y + i);
    for (; i < floats; ++i)
        weigh<float, 1>(state, w + i, lanes, y + i);
}

template <class Group, int64_t groups> void runRows(const DirectPass &pass)
{
    constexpr int64_t lanes = groups * lanesOf<Group>;
    constexpr int64_t chunk = chunkFloats / lanes;
    const int64_t order = pass.state.order;
    const Frames &frames = pass.frames;
    const float *input = frames.input + frames.first + pass.channel;
    float *output = frames.output + frames.first + pass.channel;
    alignas(64) float line[historyFloats + chunkFloats];
    alignas(64) float y[chunkFloats];
    float *const w = line + order * lanes;

    for (int64_t k = 1; k <= order; ++k)
        takeRows<lanes>(ringRow(pass, k), 0, pass.channels, w - k * lanes, 1);
    int64_t rows = 0;
    for (int64_t done = 0; done < pass.frameCount; done += rows) {
        __builtin_memmove(line, line + rows * lanes, static_cast<size_t>(order * lanes) * bytesOfFloat);
        const int64_t left = pass.frameCount - done;
        rows = left < chunk ? left : chunk;
        takeRows<lanes>(input, frames.stride, pass.channels, w, rows);
        recurse<Group, groups>(pass.state, w, rows);
        weighAll(pass.state, w, lanes, y, rows * lanes);
        giveRows<lanes>(y, rows, output, frames.stride, pass.channels);
        input += rows * frames.stride;
        output += rows * frames.stride;
    }
    for (int64_t k = 0; k <= order; ++k)
        giveRows<lanes>(w + (rows - 1 - k) * lanes, 1, ringRow(pass, 1 + k - pass.frameCount), 0,
                        pass.channels);
}

// The lanes of a row for `channels`: as few as hold them.
int64_t lanesFor(size_t channels)
{
    int64_t lanes = 2 * int64_t{floatLanes};
    while (static_cast<size_t>(lanes / 2) >= channels)
        lanes /= 2;
    return lanes;
}

void runDirect(const DirectPass &pass, int64_t lanes)
{
    switch (lanes) {
    case 1:
        return runRows<float, 1>(pass);
    case 2:
        return runRows<Float2, 1>(pass);
    case floatLanes:
        return runRows<Floats, 1>(pass);
    case 2 * int64_t{floatLanes}:
        return runRows<Floats, 2>(pass);
#if ORVA_VECTOR_BYTES >= 32
    case 4:
        return runRows<Float4, 1>(pass);
#endif
#if ORVA_VECTOR_BYTES >= 64
    case 8:
        return runRows<HalfFloats, 1>(pass);
#endif
    }
}

} // namespace
} // namespace orva::ORVA_LEVEL
