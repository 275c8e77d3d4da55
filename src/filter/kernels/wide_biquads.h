// The cascade over vectors of doubles. A pass runs neighbouring sections over neighbouring channels, one, two, four ... up
// to a vector of them (`group`). Its lanes, for groups of two in vectors of four:
//
//     vector 0                       vector 1
//     | s0 c0  s0 c1  s1 c0  s1 c1 | s2 c0  s2 c1 ...             s: section of the pass, c: channel of the group
//
// In step k section s is at frame n = k - lag s:
//     w[n] = (x[n] - a1 w[n-1]) - a2 w[n-2]
//     y[n] = (b0 w[n] + b1 w[n-1]) + b2 w[n-2]
// and its y, as float, is shifted up by a group and is the x of the next section `lag` steps later. So no step waits for
// what a section makes. In the first and the last steps only some sections have a frame; the memories of the others are
// kept by a mask.
#pragma once

#include "common/lanes.h"
#include "filter/kernels/ORVAfilter_kernels.h"

#include <utility>

namespace orva::ORVA_LEVEL
{
namespace
{

constexpr int32_t stepsOfLag = 3;  // as long as a y takes, in steps
constexpr int32_t mostVectors = 4; // as many as find room for their memories in registers
constexpr int32_t mostLanes = mostVectors * doubleLanes;

struct Pass {
    const _DFIISOSstate &state;
    const float
        *input; // the first frame, of the first channel of the group; or what the pass before has made of it
    float *output;
    int64_t stride;
    int64_t frameCount; // a multiple of the lag, and no less than `sections` times it
    size_t channelCount;
    size_t channel;  // the first one of the group
    int32_t section; // the first one
    int32_t sections;
};

// The memory of a lane in the slot of the frame that lies `back` frames before the one at `position`.
double &memoryOf(const Pass &pass, int32_t group, int32_t lane, int64_t position, int64_t back)
{
    const auto slot = static_cast<size_t>((position + back) & 3);
    const size_t channel = pass.channel + static_cast<size_t>(lane % group);
    const auto section = static_cast<size_t>(pass.section) + static_cast<size_t>(lane / group);
    const auto sections = static_cast<size_t>(pass.state.numBiquads);
    return pass.state.memory[(slot * pass.channelCount + channel) * sections + section];
}

template <int32_t vectors> struct Registers {
    Doubles a1[vectors], a2[vectors], b0[vectors], b1[vectors], b2[vectors];
    Doubles w1[vectors], w2[vectors];
};

// Lanes after the last section hold zeros.
template <int32_t vectors> void gather(const Pass &pass, int32_t group, Registers<vectors> &r)
{
    r = {};
    for (int32_t i = 0; i < pass.sections * group; ++i) {
        const double *record =
            pass.state.coefs + biquadDoubles * static_cast<size_t>(pass.section + i / group);
        const int32_t v = i / doubleLanes, lane = i % doubleLanes;
        r.a1[v][lane] = record[0];
        r.a2[v][lane] = record[1];
        r.b0[v][lane] = record[2];
        r.b1[v][lane] = record[3];
        r.b2[v][lane] = record[4];
        r.w1[v][lane] = memoryOf(pass, group, i, pass.state.position, 1);
        r.w2[v][lane] = memoryOf(pass, group, i, pass.state.position, 2);
    }
}

template <int32_t vectors> void scatter(const Pass &pass, int32_t group, const Registers<vectors> &r)
{
    const int64_t position = pass.state.position - pass.frameCount;
    for (int32_t i = 0; i < pass.sections * group; ++i) {
        memoryOf(pass, group, i, position, 1) = r.w1[i / doubleLanes][i % doubleLanes];
        memoryOf(pass, group, i, position, 2) = r.w2[i / doubleLanes][i % doubleLanes];
    }
}

// The last `shift` lanes of `below`, then the first ones of `lanes`.
template <int32_t shift, int32_t... lane>
[[gnu::always_inline]] inline HalfFloats shiftedUp(HalfFloats below, HalfFloats lanes,
                                                   std::integer_sequence<int32_t, lane...>)
{
    return __builtin_shufflevector(below, lanes, (doubleLanes - shift + lane)...);
}

// One step. `y` holds what the sections made `lag` steps ago, and takes what they make now; the input stands in the last
// lanes of `x`. All vectors are taken through it together, so that few operations in a row wait for each other: a processor
// looks only so far ahead.
template <int32_t group, int32_t vectors>
[[gnu::always_inline]] inline void step(Registers<vectors> &r, HalfFloats x, HalfFloats (&y)[vectors])
{
    Doubles w[vectors];
#pragma GCC unroll 4
    for (int32_t v = 0; v < vectors; ++v)
        w[v] = widen(
            shiftedUp<group>(v > 0 ? y[v - 1] : x, y[v], std::make_integer_sequence<int32_t, doubleLanes>()));
#pragma GCC unroll 4
    for (int32_t v = 0; v < vectors; ++v)
        w[v] = w[v] - r.w1[v] * r.a1[v];
#pragma GCC unroll 4
    for (int32_t v = 0; v < vectors; ++v)
        w[v] = w[v] - r.w2[v] * r.a2[v];
#pragma GCC unroll 4
    for (int32_t v = 0; v < vectors; ++v) {
        y[v] = narrow((w[v] * r.b0[v] + r.b1[v] * r.w1[v]) + r.b2[v] * r.w2[v]);
        r.w2[v] = r.w1[v];
        r.w1[v] = w[v];
    }
}

template <int32_t group> [[gnu::always_inline]] inline HalfFloats take(const Pass &pass, int64_t n)
{
    const float *frame = pass.input + n * pass.stride;
    HalfFloats x = {};
#pragma GCC unroll 8
    for (int32_t c = 0; c < group; ++c)
        x[doubleLanes - group + c] = frame[c];
    return x;
}

// The lanes of the last section, from the last vector.
template <int32_t group, int32_t vectors>
[[gnu::always_inline]] inline void give(const Pass &pass, int64_t n, HalfFloats y)
{
    const int32_t lane = (pass.sections - 1) * group - (vectors - 1) * doubleLanes;
    alignas(64) float lanes[doubleLanes];
    store(lanes, y);
    __builtin_memcpy(pass.output + n * pass.stride, lanes + lane, group * sizeof(float));
}

// Steps in which some sections have no frame.
template <int32_t group, int32_t vectors>
void runEdge(const Pass &pass, Registers<vectors> &r, HalfFloats (*y)[vectors], int64_t first,
             int64_t lastLag)
{
    Doubles start[vectors]; // the step in which a lane is at frame 0
    for (int32_t i = 0; i < vectors * doubleLanes; ++i) {
        const int32_t section = i / group;
        start[i / doubleLanes][i % doubleLanes] = stepsOfLag * section;
    }
    for (int64_t k = first; k < first + lastLag; ++k) {
        HalfFloats(&made)[vectors] = y[k % stepsOfLag];
        Doubles w1[vectors], w2[vectors];
#pragma GCC unroll 4
        for (int32_t v = 0; v < vectors; ++v) {
            w1[v] = r.w1[v];
            w2[v] = r.w2[v];
        }
        step<group, vectors>(r, k < pass.frameCount ? take<group>(pass, k) : HalfFloats{}, made);
        const auto now = allLanes<Doubles>(static_cast<double>(k));
#pragma GCC unroll 4
        for (int32_t v = 0; v < vectors; ++v) {
            const Doubles n = now - start[v];
            const auto isFrame = (n >= 0.0) & (n < static_cast<double>(pass.frameCount));
            r.w1[v] = isFrame ? r.w1[v] : w1[v];
            r.w2[v] = isFrame ? r.w2[v] : w2[v];
        }
        if (k >= lastLag)
            give<group, vectors>(pass, k - lastLag, made[vectors - 1]);
    }
}

// Steps in which all have one, from `lastLag` on.
template <int32_t group, int32_t vectors>
void runSteady(const Pass &pass, Registers<vectors> &registers, HalfFloats (&line)[stepsOfLag][vectors],
               int64_t lastLag)
{
    Registers<vectors> r = registers;
    HalfFloats y[stepsOfLag][vectors];
    __builtin_memcpy(y, line, sizeof y);
    for (int64_t k = lastLag; k < pass.frameCount; k += stepsOfLag) {
#pragma GCC unroll 4
        for (int32_t p = 0; p < stepsOfLag; ++p) {
            step<group, vectors>(r, take<group>(pass, k + p), y[p]);
            give<group, vectors>(pass, k + p - lastLag, y[p][vectors - 1]);
        }
    }
    __builtin_memcpy(line, y, sizeof y);
    registers = r;
}

template <int32_t group, int32_t vectors> void runVectors(const Pass &pass)
{
    const int64_t lastLag = int64_t{stepsOfLag} * (pass.sections - 1);
    Registers<vectors> r;
    HalfFloats y[stepsOfLag][vectors] = {};
    gather(pass, group, r);
    runEdge<group>(pass, r, y, 0, lastLag);
    runSteady<group>(pass, r, y, lastLag);
    runEdge<group>(pass, r, y, pass.frameCount, lastLag);
    scatter(pass, group, r);
}

template <int32_t group> void runGroup(const Pass &pass)
{
    switch ((pass.sections * group + doubleLanes - 1) / doubleLanes) {
    case 1:
        return runVectors<group, 1>(pass);
    case 2:
        return runVectors<group, 2>(pass);
    case 3:
        return runVectors<group, 3>(pass);
    default:
        return runVectors<group, 4>(pass);
    }
}

void runGroup(const Pass &pass, int32_t group)
{
    switch (group) {
    case 1:
        return runGroup<1>(pass);
    case 2:
        return runGroup<2>(pass);
#if ORVA_VECTOR_BYTES >= 32
    case 4:
        return runGroup<4>(pass);
#endif
#if ORVA_VECTOR_BYTES >= 64
    case 8:
        return runGroup<8>(pass);
#endif
    }
}

// The most channels that fill a group.
int32_t groupOf(size_t channels)
{
    int32_t group = doubleLanes;
    while (static_cast<size_t>(group) > channels)
        group /= 2;
    return group;
}

// The frames from which on a pass is quicker than the plain form: the lag of its sections, and what gathering takes.
int64_t leastFrames(const _DFIISOSstate &state, size_t channels)
{
    constexpr int32_t forGathering = 20;
    int32_t smallest = doubleLanes;
    while (channels % static_cast<size_t>(smallest) != 0)
        smallest /= 2;
    const int32_t most = mostLanes / smallest;
    return stepsOfLag * (state.numBiquads < most ? state.numBiquads : most) + forGathering;
}

// All passes of a call over regular frames. Leaves the memories of its last two frames, each in its slot.
void runCascade(_DFIISOSstate &state, const Frames &frames, int64_t frameCount)
{
    int32_t group = 0;
    for (size_t channel = 0; channel < frames.channels; channel += static_cast<size_t>(group)) {
        group = groupOf(frames.channels - channel);
        const int32_t most = mostLanes / group;
        const int32_t passes = (state.numBiquads + most - 1) / most;
        const int32_t each = (state.numBiquads + passes - 1) / passes;
        const float *input = frames.input + frames.first + channel;
        float *output = frames.output + frames.first + channel;
        for (int32_t section = 0; section < state.numBiquads; section += each) {
            const int32_t left = state.numBiquads - section;
            const int32_t sections = left < each ? left : each;
            runGroup({state, input, output, frames.stride, frameCount, frames.channels, channel, section,
                      sections},
                     group);
            input = output;
        }
    }
    state.position = static_cast<int32_t>((state.position - frameCount) & 3);
}

} // namespace
} // namespace orva::ORVA_LEVEL
