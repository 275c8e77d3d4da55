// The table of window shapes.
#pragma once

#include <cstdint>

namespace orva
{

struct WindowDef {
    int32_t type;
    char name[128];
    double normFactor; // no operation reads it: gains are computed from the samples, and the two disagree
    void (*generator)(float *w, uint32_t N);
};

constexpr int32_t windowCount = 11;
extern const WindowDef _WinDefTable[windowCount];

} // namespace orva
