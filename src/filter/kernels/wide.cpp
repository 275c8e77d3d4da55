// The direct form with neighbouring channels side by side, a vector of them at a time:
//
//     | c0 c1 c2 c3 | c4 c5 c6 c7 | c8 | c9
#include "common/lanes.h"
#include "filter/kernels/ORVAfilter_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

// One frame of a group of channels. `w` points to its place in the frame's row; `row` is the number of that row, of
// which older ones follow upward.
template <class Group>
[[gnu::always_inline]] inline void runGroup(const _DFIIstate &state, size_t channels, size_t c,
                                            const float *input, float *output)
{
    const float *ring = state.memory + c;
    int32_t row = state.position;
    auto w = load<Group>(input + c);
    Group y = {};
    for (int32_t k = 0; k < state.order; ++k) {
        row = row < state.order ? row + 1 : 0;
        const auto older = load<Group>(ring + static_cast<size_t>(row) * channels);
        if (k < state.denOrder)
            w -= state.denominator[k] * older;
        if (k < state.numOrder)
            y += state.numerator[k] * older;
    }
    store(state.memory + static_cast<size_t>(state.position) * channels + c, w);
    store(output + c, y + w * state.gain);
}

// Whether an output is the input of a later channel in the same frame.
bool isShiftedWithinAFrame(const Frames &frames)
{
    const auto distance =
        reinterpret_cast<uintptr_t>(frames.output) - reinterpret_cast<uintptr_t>(frames.input);
    return distance > 0 && distance < frames.channels * sizeof(float);
}

void directForm(_DFIIstate &state, const Frames &frames)
{
    if (isShiftedWithinAFrame(frames)) {
        kernelsAt<FilterKernels, Level::plain>().directForm(state, frames);
        return;
    }
    constexpr auto lanes = static_cast<size_t>(floatLanes);
    const size_t channels = frames.channels;
    for (int64_t i = frames.first; i <= frames.last; i += frames.stride) {
        size_t c = 0;
        for (; c + lanes <= channels; c += lanes)
            runGroup<Floats>(state, channels, c, frames.input + i, frames.output + i);
        for (; c + 4 <= channels; c += 4)
            runGroup<Float4>(state, channels, c, frames.input + i, frames.output + i);
        for (; c < channels; ++c)
            runGroup<float>(state, channels, c, frames.input + i, frames.output + i);
        state.position = state.position < 1 ? state.order : state.position - 1;
    }
}

void biquads(_DFIISOSstate &state, const Frames &frames)
{
    kernelsAt<FilterKernels, Level::plain>().biquads(state, frames);
}

} // namespace
} // namespace ORVA_LEVEL

template <> const FilterKernels &kernelsAt<FilterKernels, Level::ORVA_LEVEL>()
{
    static constexpr FilterKernels table = {ORVA_LEVEL::directForm, ORVA_LEVEL::biquads};
    return table;
}

} // namespace orva
