// Biquads in silence, on processors that are slow with subnormal numbers.
#pragma once

#include "filter/kernels/ORVAfilter_kernels.h"

#include <cstdint>

namespace orva
{

// Runs the frames as the kernels do. With silence at the input, memories decay until they wander among the smallest doubles
// and stay there; they are then run as integers.
void runBiquadsInUnits(_DFIISOSstate &state, const Frames &frames);

} // namespace orva
