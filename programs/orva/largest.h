// The largest of many samples, at the speed of vectors.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

namespace orva
{

// The bits of a size order as sizes do; those of not-a-number stand above infinity's.
constexpr int32_t bitsOfSize(float value)
{
    return std::bit_cast<int32_t>(value) & 0x7fffffff;
}

inline int32_t largestBits(const float *values, int64_t count)
{
    int32_t largest = 0;
    for (int64_t i = 0; i < count; ++i)
        largest = std::max(largest, bitsOfSize(values[i]));
    return largest;
}

inline bool areFinite(const float *values, int64_t count)
{
    return largestBits(values, count) < bitsOfSize(std::numeric_limits<float>::infinity());
}

} // namespace orva
