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
using PairBits [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = uint64_t; // a pair of floats in each lane
using TwiceAsMany [[gnu::vector_size(2 * ORVA_VECTOR_BYTES)]] = double;
using HalfFloats [[gnu::vector_size(ORVA_VECTOR_BYTES / 2)]] = float; // as many as Doubles has lanes
using HalfInts [[gnu::vector_size(ORVA_VECTOR_BYTES / 2)]] = int32_t;
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

// Of the numbers x0 y0 x1 y1 ... in two vectors, those at even places, or those at odd ones; and back, the lower and the
// upper half of the numbers. In one vector, each even one in the place of its neighbour too, each odd one, and neighbours
// exchanged. Of the pairs in two vectors, as many as one holds from the second on. The grouped ones work on each four lanes
// of two vectors by themselves, which is quicker, and undo each other. Two halves in one vector; a half with anything after it; the lower
// of two vectors of doubles in one.
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

[[gnu::always_inline]] inline Floats interleavedLow(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 0, 4, 1, 5);
}

[[gnu::always_inline]] inline Floats interleavedHigh(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 2, 6, 3, 7);
}

[[gnu::always_inline]] inline Floats afterFirstPair(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 2, 3, 4, 5);
}

[[gnu::always_inline]] inline Floats groupedEvens(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 0, 2, 4, 6);
}

[[gnu::always_inline]] inline Floats groupedOdds(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 1, 3, 5, 7);
}

[[gnu::always_inline]] inline Floats groupedLow(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 0, 4, 1, 5);
}

[[gnu::always_inline]] inline Floats groupedHigh(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 2, 6, 3, 7);
}

[[gnu::always_inline]] inline Floats joined(HalfFloats lower, HalfFloats upper)
{
    return __builtin_shufflevector(lower, upper, 0, 1, 2, 3);
}

[[gnu::always_inline]] inline Floats joinedWithAny(HalfFloats lower)
{
    return __builtin_shufflevector(lower, lower, 0, 1, -1, -1);
}

[[gnu::always_inline]] inline Doubles lowerOfTwo(TwiceAsMany x)
{
    return __builtin_shufflevector(x, x, 0, 1);
}
#elif ORVA_VECTOR_BYTES == 32
// Where two steps stand, each is one instruction; in one step GCC takes three.
[[gnu::always_inline]] inline Floats lowerHalves(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 0, 1, 2, 3, 8, 9, 10, 11);
}

[[gnu::always_inline]] inline Floats upperHalves(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 4, 5, 6, 7, 12, 13, 14, 15);
}

[[gnu::always_inline]] inline Floats evens(Floats low, Floats high)
{
    return __builtin_shufflevector(lowerHalves(low, high), upperHalves(low, high), 0, 2, 8, 10, 4, 6, 12, 14);
}

[[gnu::always_inline]] inline Floats odds(Floats low, Floats high)
{
    return __builtin_shufflevector(lowerHalves(low, high), upperHalves(low, high), 1, 3, 9, 11, 5, 7, 13, 15);
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

[[gnu::always_inline]] inline Floats interleavedLow(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 0, 8, 1, 9, 2, 10, 3, 11);
}

[[gnu::always_inline]] inline Floats interleavedHigh(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 4, 12, 5, 13, 6, 14, 7, 15);
}

[[gnu::always_inline]] inline Floats afterFirstPair(Floats low, Floats high)
{
    const Floats middle = __builtin_shufflevector(low, high, 4, 5, 6, 7, 8, 9, 10, 11);
    return __builtin_shufflevector(low, middle, 2, 3, 8, 9, 6, 7, 12, 13);
}

[[gnu::always_inline]] inline Floats groupedEvens(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 0, 2, 8, 10, 4, 6, 12, 14);
}

[[gnu::always_inline]] inline Floats groupedOdds(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 1, 3, 9, 11, 5, 7, 13, 15);
}

[[gnu::always_inline]] inline Floats groupedLow(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 0, 8, 1, 9, 4, 12, 5, 13);
}

[[gnu::always_inline]] inline Floats groupedHigh(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 2, 10, 3, 11, 6, 14, 7, 15);
}

[[gnu::always_inline]] inline Floats joined(HalfFloats lower, HalfFloats upper)
{
    return __builtin_shufflevector(lower, upper, 0, 1, 2, 3, 4, 5, 6, 7);
}

[[gnu::always_inline]] inline Floats joinedWithAny(HalfFloats lower)
{
    return __builtin_shufflevector(lower, lower, 0, 1, 2, 3, -1, -1, -1, -1);
}

[[gnu::always_inline]] inline Doubles lowerOfTwo(TwiceAsMany x)
{
    return __builtin_shufflevector(x, x, 0, 1, 2, 3);
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

[[gnu::always_inline]] inline Floats interleavedLow(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}

[[gnu::always_inline]] inline Floats interleavedHigh(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}

[[gnu::always_inline]] inline Floats afterFirstPair(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17);
}

[[gnu::always_inline]] inline Floats groupedEvens(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 0, 2, 16, 18, 4, 6, 20, 22, 8, 10, 24, 26, 12, 14, 28, 30);
}

[[gnu::always_inline]] inline Floats groupedOdds(Floats low, Floats high)
{
    return __builtin_shufflevector(low, high, 1, 3, 17, 19, 5, 7, 21, 23, 9, 11, 25, 27, 13, 15, 29, 31);
}

[[gnu::always_inline]] inline Floats groupedLow(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 0, 16, 1, 17, 4, 20, 5, 21, 8, 24, 9, 25, 12, 28, 13, 29);
}

[[gnu::always_inline]] inline Floats groupedHigh(Floats even, Floats odd)
{
    return __builtin_shufflevector(even, odd, 2, 18, 3, 19, 6, 22, 7, 23, 10, 26, 11, 27, 14, 30, 15, 31);
}

[[gnu::always_inline]] inline Floats joined(HalfFloats lower, HalfFloats upper)
{
    return __builtin_shufflevector(lower, upper, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
}

[[gnu::always_inline]] inline Floats joinedWithAny(HalfFloats lower)
{
    return __builtin_shufflevector(lower, lower, 0, 1, 2, 3, 4, 5, 6, 7, -1, -1, -1, -1, -1, -1, -1, -1);
}

[[gnu::always_inline]] inline Doubles lowerOfTwo(TwiceAsMany x)
{
    return __builtin_shufflevector(x, x, 0, 1, 2, 3, 4, 5, 6, 7);
}
#endif

// The even or the odd lanes negated: a sum with one is the difference, to the bit.
[[gnu::always_inline]] inline Floats withEvensNegated(Floats x)
{
    return reinterpret_cast<Floats>(reinterpret_cast<PairBits>(x) ^
                                    0x80000000u); // the even lane is the lower half
}

[[gnu::always_inline]] inline Floats withOddsNegated(Floats x)
{
    return reinterpret_cast<Floats>(reinterpret_cast<PairBits>(x) ^ 0x8000000000000000u);
}

// Whether a comparison holds in each lane.
template <class Mask> [[gnu::always_inline]] inline bool all(Mask isSo)
{
    uint64_t pairs[sizeof isSo / sizeof(uint64_t)];
    __builtin_memcpy(pairs, &isSo, sizeof isSo);
    uint64_t bits = UINT64_MAX;
    for (const uint64_t pair : pairs)
        bits &= pair;
    return bits == UINT64_MAX;
}

// By way of twice as many: for these GCC has one instruction, where it takes five to convert what is asked for.
[[gnu::always_inline]] inline Doubles widen(HalfFloats lanes)
{
    return lowerOfTwo(__builtin_convertvector(joinedWithAny(lanes), TwiceAsMany));
}

[[gnu::always_inline]] inline HalfFloats narrow(Doubles lanes)
{
    return __builtin_convertvector(lanes, HalfFloats);
}

} // namespace
} // namespace orva::ORVA_LEVEL
