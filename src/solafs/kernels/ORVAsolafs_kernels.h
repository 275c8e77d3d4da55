// The hot loops of time scaling.
#pragma once

#include "common/cpu.h"

namespace orva
{

inline constexpr int32_t gridPerPoint = 2;

// Room for kernels: they may copy the grid, and sum candidates in whole groups.
inline constexpr int32_t gridCopies = 4;
inline constexpr int32_t candidateGroup = 128;

// One search. Comparison points lie 8 samples apart and candidates 4, so every fourth sample is all that it reads: that of
// candidate j at point i is grid[gridPerPoint * i + j].
struct Search {
    int32_t points;
    int32_t candidates;
    const float *reference; // what has just been played, at the points
    float *grid;            // gridCopies times gridRoom numbers, of which the first are the grid
    float *eights;          // gridRoom numbers for kernels to work with
    float *scores;          // one a candidate, rounded up to a whole group
    int64_t gridRoom; // what whole groups of candidates need, a multiple of 64 bytes as the addresses are
};

struct SolafsKernels {
    // to[i] = from[4 i]
    void (*takeEveryFourth)(const float *from, float *to, int32_t count);

    // The first of the candidates that score best, or 0 if none scores above 0.
    int32_t (*bestCandidate)(const Search &search);

    // Fades from `overlap` to `next`, in `overlap`.
    void (*crossFade)(const float *ramp, const float *next, float *overlap, int32_t count);
};

template <> const SolafsKernels &kernelsAt<SolafsKernels, Level::plain>();

} // namespace orva
