// The hot loops of the filter family.
#pragma once

#include "common/cpu.h"
#include "filter/ORVAfilter_state.h"

#include <cstddef>
#include <cstdint>

namespace orva
{

// The frames of a call. One starts at `first`, `first` + `stride` and so on, at the same places of both buffers, as long
// as the start is not above `last`; it is `channels` neighbouring floats.
struct Frames {
    const float *input;
    float *output;
    int64_t first;
    int64_t last;
    int64_t stride; // with 0 the first frame runs for ever
    size_t channels;
};

namespace
{

// Whether no frame overlaps another one, and input and output are one or lie apart.
inline bool isRegular(const Frames &frames)
{
    if (frames.channels == 0 || frames.stride < static_cast<int64_t>(frames.channels))
        return false;
    const auto input = reinterpret_cast<uintptr_t>(frames.input);
    const auto output = reinterpret_cast<uintptr_t>(frames.output);
    const uintptr_t bytes = (static_cast<uintptr_t>(frames.last) + frames.channels) * sizeof(float);
    return input == output || input + bytes <= output || output + bytes <= input;
}

} // namespace

// Each runs frame after frame, also where frames or buffers overlap, and leaves memories and position as that leaves them.
struct FilterKernels {
    void (*directForm)(_DFIIstate &state, const Frames &frames);
    void (*biquads)(_DFIISOSstate &state, const Frames &frames);
};

template <> const FilterKernels &kernelsAt<FilterKernels, Level::plain>();

} // namespace orva
