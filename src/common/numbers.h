// Numbers that several families share.
#pragma once

#include <cstdint>

namespace orva
{

inline constexpr double pi = 3.141592653589793;
inline constexpr double twoPi = 6.283185307179586;

// The bins of a real transform of `length` samples, zero frequency and the top one included.
constexpr int32_t spectrumBins(int32_t length)
{
    return length / 2 + 1;
}

// By Euclid's steps, as GCC 12 at -O2 has made other numbers of std::gcd where it was inlined.
constexpr int32_t greatestCommonDivisor(int32_t a, int32_t b)
{
    while (b != 0) {
        const int32_t rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

// The fewest values that a complex work array holds: powers are computed in groups of four.
inline constexpr int32_t leastWorkLength = 4;

} // namespace orva
