// The vectors of the level that a file is compiled for: ORVA_LEVEL names it, ORVA_VECTOR_BYTES is their width. Operations
// act lane by lane, each rounded as it is for one number. All of it is private to the file, since one copy of a function
// shared between levels could run where its instructions are not known.
#pragma once

#include <cstdint>

namespace orva::ORVA_LEVEL
{
namespace
{

using Floats [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = float;
using Doubles [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = double;
using Ints [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = int32_t;
using Bits [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = uint32_t;
using HalfFloats [[gnu::vector_size(ORVA_VECTOR_BYTES / 2)]] = float; // as many as Doubles has lanes
using Float4 [[gnu::vector_size(16)]] = float;

constexpr int32_t floatLanes = sizeof(Floats) / sizeof(float);
constexpr int32_t doubleLanes = sizeof(Doubles) / sizeof(double);

// From any address.
template <class Vector, class Element> [[gnu::always_inline]] inline Vector load(const Element *from)
{
    Vector lanes;
    __builtin_memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

template <class Vector, class Element> [[gnu::always_inline]] inline void store(Element *to, Vector lanes)
{
    __builtin_memcpy(to, &lanes, sizeof lanes);
}

// The first `count` lanes, the others zero; and back, with nothing touched after them.
template <class Vector, class Element>
[[gnu::always_inline]] inline Vector loadPart(const Element *from, int32_t count)
{
    Vector lanes = {};
    __builtin_memcpy(&lanes, from, static_cast<uint32_t>(count) * sizeof(Element));
    return lanes;
}

template <class Vector, class Element>
[[gnu::always_inline]] inline void storePart(Element *to, Vector lanes, int32_t count)
{
    __builtin_memcpy(to, &lanes, static_cast<uint32_t>(count) * sizeof(Element));
}

// The same number in each lane.
template <class Vector, class Element> [[gnu::always_inline]] inline Vector allLanes(Element x)
{
    return x - Vector{}; // not a sum: that would make -0 to 0
}

// Of the numbers x0 y0 x1 y1 ... in two vectors, those at even places, or those at odd ones; and, in one vector, each even
// one in the place of its neighbour too, each odd one, and neighbours exchanged.
#if ORVA_VECTOR_BYTES == 16
[[gnu::always_inline]] inline Floats evens(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 0, 2, 4, 6);
}

[[gnu::always_inline]] inline Floats odds(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 1, 3, 5, 7);
}

[[gnu::always_inline]] inline Floats evensTwice(Floats x)
{
    return __builtin_shufflevector(x, x, 0, 0, 2, 2);
}

[[gnu::always_inline]] inline Floats oddsTwice(Floats x)
{
    return __builtin_shufflevector(x, x, 1, 1, 3, 3);
}

[[gnu::always_inline]] inline Floats exchanged(Floats x)
{
    return __builtin_shufflevector(x, x, 1, 0, 3, 2);
}
#elif ORVA_VECTOR_BYTES == 32
[[gnu::always_inline]] inline Floats evens(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14);
}

[[gnu::always_inline]] inline Floats odds(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 1, 3, 5, 7, 9, 11, 13, 15);
}

[[gnu::always_inline]] inline Floats evensTwice(Floats x)
{
    return __builtin_shufflevector(x, x, 0, 0, 2, 2, 4, 4, 6, 6);
}

[[gnu::always_inline]] inline Floats oddsTwice(Floats x)
{
    return __builtin_shufflevector(x, x, 1, 1, 3, 3, 5, 5, 7, 7);
}

[[gnu::always_inline]] inline Floats exchanged(Floats x)
{
    return __builtin_shufflevector(x, x, 1, 0, 3, 2, 5, 4, 7, 6);
}
#else
[[gnu::always_inline]] inline Floats evens(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}

[[gnu::always_inline]] inline Floats odds(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
}

[[gnu::always_inline]] inline Floats evensTwice(Floats x)
{
    return __builtin_shufflevector(x, x, 0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14);
}

[[gnu::always_inline]] inline Floats oddsTwice(Floats x)
{
    return __builtin_shufflevector(x, x, 1, 1, 3, 3, 5, 5, 7, 7, 9, 9, 11, 11, 13, 13, 15, 15);
}

[[gnu::always_inline]] inline Floats exchanged(Floats x)
{
    return __builtin_shufflevector(x, x, 1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14);
}
#endif

[[gnu::always_inline]] inline Doubles widen(HalfFloats lanes)
{
    return __builtin_convertvector(lanes, Doubles);
}

[[gnu::always_inline]] inline HalfFloats narrow(Doubles lanes)
{
    return __builtin_convertvector(lanes, HalfFloats);
}

} // namespace
} // namespace orva::ORVA_LEVEL
