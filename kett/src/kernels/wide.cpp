// The plain loops over vectors of 16 bytes, which every 64-bit processor has, in the vector types of GCC and
// Clang. Each loop takes a block of two vectors at a time, and leaves what fills no block to the plain one:
//
//     |  first  second  |  first  second  |  plain..
#include "kernels/kernels.h"

#include <cmath>
#include <cstring>

namespace kett::wide
{

namespace
{

using Floats [[gnu::vector_size(16)]] = float;
using Ints [[gnu::vector_size(16)]] = int32_t;
using Words [[gnu::vector_size(16)]] = int16_t;
using IntPair [[gnu::vector_size(32)]] = int32_t; // a block

constexpr int32_t lanes = 4;
constexpr int32_t block = 2 * lanes;

// From any address.
template <class Vector, class Element> Vector load(const Element *from)
{
    Vector vector;
    std::memcpy(&vector, from, sizeof vector);
    return vector;
}

template <class Vector, class Element> void store(Element *to, const Vector &vector)
{
    std::memcpy(to, &vector, sizeof vector);
}

Floats allOf(float x)
{
    return Floats{x, x, x, x};
}

Floats magnitudeOf(Floats x)
{
    return reinterpret_cast<Floats>(reinterpret_cast<Ints>(x) & 0x7fffffff);
}

// A comparison gives -1 in each lane where it holds and 0 in the others.
bool isAny(Ints comparison)
{
    using Halves [[gnu::vector_size(16)]] = int64_t;
    const auto halves = reinterpret_cast<Halves>(comparison);
    return (halves[0] | halves[1]) != 0;
}

// plain::rounded() of each lane: what is cut away is exact, and decides whether the cut moves away from zero.
Ints rounded(Floats scaled)
{
    const Ints isNumber = scaled == scaled;
    scaled = scaled < 32767.0f ? scaled : allOf(32767.0f);
    scaled = scaled > -32768.0f ? scaled : allOf(-32768.0f);
    const Ints cut = __builtin_convertvector(scaled, Ints);
    const Floats rest = magnitudeOf(scaled - __builtin_convertvector(cut, Floats));
    const Ints isAway = (rest > 0.5f) | ((rest == 0.5f) & -(cut & 1));
    const Ints direction = (reinterpret_cast<Ints>(scaled) >> 31) | 1; // -1 below zero, else 1
    return (cut + (isAway & direction)) & isNumber;
}

} // namespace

void multiply(float *vector, int32_t count, float factor)
{
    int32_t i = 0;
    for (; count - i >= block; i += block) {
        const Floats first = load<Floats>(vector + i) * factor;
        const Floats second = load<Floats>(vector + i + lanes) * factor;
        store(vector + i, first);
        store(vector + i + lanes, second);
    }
    plain::multiply(vector + i, count - i, factor);
}

// In any order, since the largest of all is the same.
float largestMagnitude(const float *vector, int32_t count)
{
    Floats first = allOf(0.0f);
    Floats second = allOf(0.0f);
    int32_t i = 0;
    for (; count - i >= block; i += block) {
        const Floats a = magnitudeOf(load<Floats>(vector + i));
        const Floats b = magnitudeOf(load<Floats>(vector + i + lanes));
        first = a > first ? a : first;
        second = b > second ? b : second;
    }
    first = first > second ? first : second;
    float largest = plain::findPeak(vector + i, count - i).magnitude;
    for (int32_t lane = 0; lane < lanes; ++lane)
        largest = first[lane] > largest ? first[lane] : largest;
    return largest;
}

// The largest magnitude first, then the place where it is met again: faster than both at once.
Peak findPeak(const float *vector, int32_t count)
{
    const float largest = largestMagnitude(vector, count);
    if (largest == 0.0f)
        return {0.0f, 0};
    int32_t i = 0;
    for (; count - i >= block; i += block) {
        const Ints isFirst = magnitudeOf(load<Floats>(vector + i)) == largest;
        const Ints isSecond = magnitudeOf(load<Floats>(vector + i + lanes)) == largest;
        if (isAny(isFirst | isSecond))
            break;
    }
    while (std::fabs(vector[i]) != largest)
        ++i;
    return {largest, i};
}

void toWord16(const float *input, int16_t *output, int32_t count)
{
    int32_t i = 0;
    for (; count - i >= block; i += block) {
        const Ints first = rounded(load<Floats>(input + i) * 32768.0f);
        const Ints second = rounded(load<Floats>(input + i + lanes) * 32768.0f);
        const IntPair both = __builtin_shufflevector(first, second, 0, 1, 2, 3, 4, 5, 6, 7);
        store(output + i, __builtin_convertvector(both, Words));
    }
    plain::toWord16(input + i, output + i, count - i);
}

// By the reciprocal: a power of two, so that each product is exact.
void fromWord16(const int16_t *input, float *output, int32_t count)
{
    int32_t i = 0;
    for (; count - i >= block; i += block) {
        const IntPair words = __builtin_convertvector(load<Words>(input + i), IntPair);
        const Ints first = __builtin_shufflevector(words, words, 0, 1, 2, 3);
        const Ints second = __builtin_shufflevector(words, words, 4, 5, 6, 7);
        store(output + i, __builtin_convertvector(first, Floats) * (1.0f / 32768.0f));
        store(output + i + lanes, __builtin_convertvector(second, Floats) * (1.0f / 32768.0f));
    }
    plain::fromWord16(input + i, output + i, count - i);
}

} // namespace kett::wide
