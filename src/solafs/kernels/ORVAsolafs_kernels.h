// The hot loops of time scaling.
#pragma once

#include "common/cpu.h"

namespace orva
{

inline constexpr int32_t gridPerPoint = 2;

// Kernels may sum candidates in whole groups of this, and reach so far into the arrays of a search.
inline constexpr int32_t candidateGroup = 64;

// One search. Comparison points lie 8 samples apart and candidates 4, so every fourth sample is all that it reads: that of
// candidate j at point i is grid[gridPerPoint * i + j].
struct Search {
    int32_t points;
    int32_t candidates;
    const float *reference; // what has just been played, at the points
    double *grid; // gridRoom numbers, as those of `shifted`; all three begin at a multiple of 64 bytes
    // For the kernels to work with.
    double *shifted;
    double *crosses;       // one a candidate, up to a whole group
    double *wideReference; // one a point
    int64_t gridRoom;      // what whole groups of candidates need
};

struct SolafsKernels {
    // to[i] = from[4 i]
    void (*takeEveryFourth)(const float *from, double *to, int32_t count);

    // The first of the candidates that score best, or 0 if none scores above 0.
    int32_t (*bestCandidate)(const Search &search);

    // Fades from `overlap` to `next`, in `overlap`.
    void (*crossFade)(const float *ramp, const float *next, float *overlap, int32_t count);
};

template <> const SolafsKernels &kernelsAt<SolafsKernels, Level::plain>();

} // namespace orva
