// The direct form: one recursion of any order over a delay line that numerator and denominator share. Per
// channel, with the coefficients divided by a(0):
//     w[n] = x[n] - sum(k = 1 .. denOrder) a(k) w[n-k]
//     y[n] = sum(k = 1 .. numOrder) b(k) w[n-k] + b(0) w[n]
// All in single precision, in the order of k, the term of w[n] last.
#include "filter/ORVAfilter_internal.h"

#include <algorithm>
#include <cstring>

namespace
{

// Neighbouring channels that run side by side. An operation on a vector rounds each element as a scalar one
// would.
typedef float Two __attribute__((vector_size(2 * sizeof(float))));
typedef float Four __attribute__((vector_size(4 * sizeof(float))));

template <class Group> Group load(const float *from)
{
    Group group;
    std::memcpy(&group, from, sizeof group);
    return group;
}

template <class Group> void store(float *to, Group group)
{
    std::memcpy(to, &group, sizeof group);
}

struct Line {
    const float *ring;
    size_t size;     // floats in the ring
    size_t channels; // floats in a row
    const float *numerator;
    const float *denominator;
    int32_t numOrder;
    int32_t denOrder;
    int32_t common; // taps that both sides have
    float gain;
};

// One frame of a group of channels. `w` points to its place in the frame's row, where x[n] stands and w[n] is
// left; `older` is the index of its w[n-1]. Older rows follow upward.
template <class Group>
void runGroup(const Line &line, const float *input, float *w, size_t older, float *output)
{
    Group current = load<Group>(input);
    Group sum = {};
    const auto step = [&] {
        older += line.channels;
        if (older >= line.size)
            older -= line.size;
    };
    int32_t k = 0;
    for (; k < line.common; ++k, step()) {
        const Group delayed = load<Group>(line.ring + older);
        current -= line.denominator[k] * delayed;
        sum += line.numerator[k] * delayed;
    }
    for (; k < line.numOrder; ++k, step())
        sum += line.numerator[k] * load<Group>(line.ring + older);
    for (; k < line.denOrder; ++k, step())
        current -= line.denominator[k] * load<Group>(line.ring + older);
    store(w, current);
    store(output, sum + current * line.gain);
}

} // namespace

int32_t _DFIIfilter(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                    uint32_t offset, uint32_t stride)
{
    auto *state = static_cast<_DFIIstate *>(filter->state);
    const auto channels = static_cast<size_t>(filter->numChannels);
    const auto order = static_cast<size_t>(state->order);
    auto position = static_cast<size_t>(state->position);
    float *ring = state->memory;
    const Line line = {.ring = ring,
                       .size = (order + 1) * channels,
                       .channels = channels,
                       .numerator = state->numerator,
                       .denominator = state->denominator,
                       .numOrder = state->numOrder,
                       .denOrder = state->denOrder,
                       .common = std::min(state->numOrder, state->denOrder),
                       .gain = state->gain};
    const int64_t last = lastFrameStart(numSamples, filter->numChannels);

    // Where the output of one channel is the input of a later one in the same frame, that input is the 0 that
    // each output holds until all channels are read.
    const auto distance = reinterpret_cast<uintptr_t>(output) - reinterpret_cast<uintptr_t>(input);
    const bool shifted = distance > 0 && distance < channels * sizeof(float);

    for (int64_t i = offset; i <= last; i += stride) {
        float *w = ring + position * channels;
        const float *x = input + i;
        float *y = output + i;
        if (shifted) {
            for (size_t c = 0; c < channels; ++c) {
                w[c] = x[c];
                y[c] = 0.0f;
            }
            x = w;
        }
        const size_t older = position < order ? (position + 1) * channels : 0;
        size_t c = 0;
        for (; c + 4 <= channels; c += 4)
            runGroup<Four>(line, x + c, w + c, older + c, y + c);
        for (; c + 2 <= channels; c += 2)
            runGroup<Two>(line, x + c, w + c, older + c, y + c);
        for (; c < channels; ++c)
            runGroup<float>(line, x + c, w + c, older + c, y + c);
        position = position < 1 ? order : position - 1;
    }
    state->position = static_cast<int32_t>(position);
    return 1;
}

int32_t _DFIIreset(_ORVA_FILTER *filter)
{
    const auto *state = static_cast<const _DFIIstate *>(filter->state);
    const size_t rows = static_cast<size_t>(state->order) + 1;
    std::fill_n(state->memory, rows * static_cast<size_t>(filter->numChannels), 0.0f);
    return 1;
}

int32_t _DFIIcopyMem(_ORVA_FILTER *destination, const _ORVA_FILTER *source)
{
    auto *to = static_cast<_DFIIstate *>(destination->state);
    const auto *from = static_cast<const _DFIIstate *>(source->state);
    const auto channels = static_cast<size_t>(destination->numChannels);
    const size_t rows = static_cast<size_t>(to->order) + 1;
    const size_t sourceRows = static_cast<size_t>(from->order) + 1;

    std::copy_n(from->memory, std::min(rows, sourceRows) * channels, to->memory);
    // The rows to clear are as many as the source lacks, but from four times its count on: hosts know the
    // rows between as kept. They always reach past the ring, whose end is where clearing stops.
    const size_t firstCleared = 4 * sourceRows;
    if (firstCleared < rows)
        std::fill_n(to->memory + firstCleared * channels, (rows - firstCleared) * channels, 0.0f);
    // The larger of this order and the source's position, kept inside the ring. The history is thereby
    // rotated, which is meant: rows keep their numbers.
    to->position = to->order;
    return 1;
}
