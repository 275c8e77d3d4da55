// The table of window shapes.
#pragma once

#include <cstdint>
#include <span>

namespace orva
{

struct WindowDef {
    int32_t type;
    char name[128];
    double normFactor; // no operation reads it: gains are computed from the samples, and the two disagree
    void (*generator)(float *w, uint32_t N);
};

// All of them, in the order of their codes.
std::span<const WindowDef> windows();

} // namespace orva
