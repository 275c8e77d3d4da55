// The vectors of the level that a file is compiled for: ORVA_LEVEL names it, ORVA_VECTOR_BYTES is their width. Operations
// act lane by lane, each rounded as it is for one number. All of it is private to the file, since one copy of a function
// shared between levels could run where its instructions are not known.
#pragma once

#include <bit>
#include <cstdint>
#include <utility>

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

// Lane i of the result is lane index(i) of the two vectors, those of `b` counted on after those of `a`; -1 stands for any.
template <class Result, class Vector, class Index, int32_t... lane>
[[gnu::always_inline]] inline Result permutedLanes(Vector a, Vector b, Index index,
                                                   std::integer_sequence<int32_t, lane...>)
{
    return __builtin_shufflevector(a, b, index(lane)...);
}

template <class Result, class Vector, class Index>
[[gnu::always_inline]] inline Result permuted(Vector a, Vector b, Index index)
{
    constexpr int32_t lanes = sizeof(Result) / sizeof(a[0]);
    return permutedLanes<Result>(a, b, index, std::make_integer_sequence<int32_t, lanes>());
}

// Both lower halves, both upper halves.
[[gnu::always_inline]] inline Floats lowerHalves(Floats a, Floats b)
{
    return permuted<Floats>(a, b, [](int32_t i) { return i < floatLanes / 2 ? i : i + floatLanes / 2; });
}

[[gnu::always_inline]] inline Floats upperHalves(Floats a, Floats b)
{
    return permuted<Floats>(
        a, b, [](int32_t i) { return i < floatLanes / 2 ? i + floatLanes / 2 : i + floatLanes; });
}

// Of the numbers x0 y0 x1 y1 ... in each four lanes of two vectors, the even and the odd ones; and back. Quicker than the
// same over whole vectors, and they undo each other.
[[gnu::always_inline]] inline Floats groupedEvens(Floats low, Floats high)
{
    return permuted<Floats>(low, high,
                            [](int32_t i) { return i / 4 * 4 + i % 2 * 2 + i % 4 / 2 * floatLanes; });
}

[[gnu::always_inline]] inline Floats groupedOdds(Floats low, Floats high)
{
    return permuted<Floats>(low, high,
                            [](int32_t i) { return i / 4 * 4 + i % 2 * 2 + i % 4 / 2 * floatLanes + 1; });
}

[[gnu::always_inline]] inline Floats groupedLow(Floats even, Floats odd)
{
    return permuted<Floats>(even, odd, [](int32_t i) { return i / 4 * 4 + i % 4 / 2 + i % 2 * floatLanes; });
}

[[gnu::always_inline]] inline Floats groupedHigh(Floats even, Floats odd)
{
    return permuted<Floats>(even, odd,
                            [](int32_t i) { return i / 4 * 4 + i % 4 / 2 + i % 2 * floatLanes + 2; });
}

// Of the numbers x0 y0 x1 y1 ... in two vectors, those at even places and those at odd ones. With eight lanes in two steps,
// each of them one instruction; in one step GCC takes three.
[[gnu::always_inline]] inline Floats evens(Floats low, Floats high)
{
    if constexpr (floatLanes == 8)
        return groupedEvens(lowerHalves(low, high), upperHalves(low, high));
    return permuted<Floats>(low, high, [](int32_t i) { return 2 * i; });
}

[[gnu::always_inline]] inline Floats odds(Floats low, Floats high)
{
    if constexpr (floatLanes == 8)
        return groupedOdds(lowerHalves(low, high), upperHalves(low, high));
    return permuted<Floats>(low, high, [](int32_t i) { return 2 * i + 1; });
}

// The numbers of two vectors in turn: the lower and the upper half of x0 y0 x1 y1 ...
[[gnu::always_inline]] inline Floats interleavedLow(Floats even, Floats odd)
{
    return permuted<Floats>(even, odd, [](int32_t i) { return i / 2 + i % 2 * floatLanes; });
}

[[gnu::always_inline]] inline Floats interleavedHigh(Floats even, Floats odd)
{
    return permuted<Floats>(even, odd, [](int32_t i) { return i / 2 + i % 2 * floatLanes + floatLanes / 2; });
}

// Each even number in the place of its neighbour too; each odd one; neighbours exchanged.
[[gnu::always_inline]] inline Floats evensTwice(Floats x)
{
    return permuted<Floats>(x, x, [](int32_t i) { return i / 2 * 2; });
}

[[gnu::always_inline]] inline Floats oddsTwice(Floats x)
{
    return permuted<Floats>(x, x, [](int32_t i) { return i / 2 * 2 + 1; });
}

[[gnu::always_inline]] inline Floats exchanged(Floats x)
{
    return permuted<Floats>(x, x, [](int32_t i) { return i % 2 == 0 ? i + 1 : i - 1; });
}

// Of the pairs in two vectors, as many as one holds, from the second pair on. Two steps as above.
[[gnu::always_inline]] inline Floats afterFirstPair(Floats low, Floats high)
{
    if constexpr (floatLanes == 8) {
        const Floats middle = permuted<Floats>(low, high, [](int32_t i) { return i + 4; });
        return permuted<Floats>(low, middle,
                                [](int32_t i) { return i % 4 < 2 ? i + 2 : i / 4 * 4 + i % 2 + floatLanes; });
    }
    return permuted<Floats>(low, high, [](int32_t i) { return i + 2; });
}

// Two halves in one vector; a half with anything after it.
[[gnu::always_inline]] inline Floats joined(HalfFloats lower, HalfFloats upper)
{
    return permuted<Floats>(lower, upper, [](int32_t i) { return i; });
}

[[gnu::always_inline]] inline Floats joinedWithAny(HalfFloats lower)
{
    return permuted<Floats>(lower, lower, [](int32_t i) { return i < floatLanes / 2 ? i : -1; });
}

// The lower of two vectors of doubles in one.
[[gnu::always_inline]] inline Doubles lowerOfTwo(TwiceAsMany x)
{
    return permuted<Doubles>(x, x, [](int32_t i) { return i; });
}

// The signs of a pair. Its even lane is the lower half, where the lower byte comes first.
constexpr bool isEvenLower = std::endian::native == std::endian::little;
constexpr uint64_t evenSign = isEvenLower ? 0x80000000u : 0x8000000000000000u;
constexpr uint64_t oddSign = isEvenLower ? 0x8000000000000000u : 0x80000000u;

// The even or the odd lanes negated: a sum with one is the difference, to the bit.
[[gnu::always_inline]] inline Floats withEvensNegated(Floats x)
{
    return reinterpret_cast<Floats>(reinterpret_cast<PairBits>(x) ^ evenSign);
}

[[gnu::always_inline]] inline Floats withOddsNegated(Floats x)
{
    return reinterpret_cast<Floats>(reinterpret_cast<PairBits>(x) ^ oddSign);
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
