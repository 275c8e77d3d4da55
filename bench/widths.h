// What is measured at each width of vectors: compiled once a level, as the kernels are.
#pragma once

#include <cstddef>

// Natural logarithms by SLEEF, to 3.5 units in the last place. `count` is a multiple of 16.
using Logarithms = void (*)(const float *input, float *output, size_t count);

// As many multiplications and as many additions as the processor can do at once, in registers: `rounds` times
// peakOperations vectors of each.
inline constexpr size_t peakOperations = 6;
using PeakFloat = float (*)(size_t rounds, float one);
using PeakDouble = double (*)(size_t rounds, double one);

// Sections of biquads, each 5 products, 4 sums and a conversion both ways, that wait for little: `rounds` times peakSections
// vectors of doubles.
inline constexpr size_t peakSections = 8;
using PeakSections = float (*)(size_t rounds);

// Reads an array of `bytes`, a multiple of 64.
using Read = float (*)(const float *from, size_t bytes);

struct Width {
    size_t bytes; // of a vector
    Logarithms logarithms;
    PeakFloat peakFloat;
    PeakDouble peakDouble;
    PeakSections sections;
    Read read;
};

namespace baseline
{
extern const Width width;
}
#ifdef __x86_64__
namespace avx2
{
extern const Width width;
}
namespace avx512
{
extern const Width width;
}
#endif
