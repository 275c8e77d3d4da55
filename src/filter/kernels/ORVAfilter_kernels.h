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

// Each runs frame after frame, also where frames or buffers overlap, and leaves memories and position as that leaves them.
struct FilterKernels {
    void (*directForm)(_DFIIstate &state, const Frames &frames);
    void (*biquads)(_DFIISOSstate &state, const Frames &frames);
};

template <> const FilterKernels &kernelsAt<FilterKernels, Level::plain>();

} // namespace orva
