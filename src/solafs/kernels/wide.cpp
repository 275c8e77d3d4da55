// Lanes are candidates, which lie side by side on the grid. A point lies two places after the one before, so at every
// second point of AVX2 the candidates of a vector would lie across two; a copy of the grid shifted by two places takes
// these, and each load is an aligned one:
//
//     grid                g0 g1 g2 g3 | g4 g5 g6 g7 | ...         points 0, 2, 4 ...
//     grid, shifted       g2 g3 g4 g5 | g6 g7 g8 g9 | ...         points 1, 3, 5 ...
//
// After both stand the crosses of all candidates, and the reference in double.
//
// Energies cost as much as crosses, and roots and quotients more. Each energy is at least 1, so no score exceeds its cross:
// a vector of candidates none of whose crosses comes up to the best score so far needs no energies. The best score so far is
// at first that of the largest cross.
#include "common/lanes.h"
#include "solafs/kernels/ORVAsolafs_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

using Longs [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = int64_t;

constexpr int32_t atOnce =
    8; // independent sums: enough to keep the adders busy, few enough for the registers
static_assert(candidateGroup % (atOnce * doubleLanes) == 0);

const double *rowOf(const Search &search, int32_t point)
{
    return (point % 2 == 0 ? search.grid : search.shifted) + gridPerPoint * (point - point % 2);
}

bool isAnySet(Longs lanes)
{
    int64_t all = 0;
#pragma GCC unroll 8
    for (int32_t lane = 0; lane < doubleLanes; ++lane)
        all |= lanes[lane];
    return all != 0;
}

void takeEveryFourth(const float *from, double *to, int32_t count)
{
    kernelsAt<SolafsKernels, Level::plain>().takeEveryFourth(from, to, count);
}

// cross(j) for all candidates, and some more up to a whole group.
void sumCrosses(const Search &search)
{
    for (int32_t first = 0; first < search.candidates; first += atOnce * doubleLanes) {
        Doubles sum[atOnce] = {};
        for (int32_t i = 0; i < search.points; ++i) {
            const double *row = rowOf(search, i) + first;
            const auto r = allLanes<Doubles>(search.wideReference[i]);
#pragma GCC unroll 8
            for (int32_t v = 0; v < atOnce; ++v)
                sum[v] += r * load<Doubles>(row + v * doubleLanes);
        }
#pragma GCC unroll 8
        for (int32_t v = 0; v < atOnce; ++v)
            store(search.crosses + first + v * doubleLanes, sum[v]);
    }
}

struct Best {
    double score = 0.0;
    int32_t candidate = 0;
};

// Takes in the candidates of `atOnce` vectors, of which the first ones are given.
void takeIn(Best &best, const Search &search, const int32_t (&firsts)[atOnce])
{
    Doubles energy[atOnce];
#pragma GCC unroll 8
    for (int32_t v = 0; v < atOnce; ++v)
        energy[v] = allLanes<Doubles>(1.0);
    for (int32_t i = 0; i < search.points; ++i) {
        const double *row = rowOf(search, i);
#pragma GCC unroll 8
        for (int32_t v = 0; v < atOnce; ++v) {
            const auto x = load<Doubles>(row + firsts[v]);
            energy[v] += x * x;
        }
    }
    // A root and a quotient only where they may matter: cross^2 >= best^2 energy, but for the roundings.
    constexpr double slack = 1.0 - 1e-9;
    for (int32_t v = 0; v < atOnce; ++v) {
        const auto cross = load<Doubles>(search.crosses + firsts[v]);
        const double least = slack * best.score * best.score;
        if (!isAnySet((cross * cross >= least * energy[v]) & (cross >= best.score)))
            continue;
        for (int32_t lane = 0; lane < doubleLanes; ++lane) {
            const double score = cross[lane] / __builtin_sqrt(energy[v][lane]);
            const int32_t candidate = firsts[v] + lane;
            if (score > best.score || (score == best.score && candidate < best.candidate))
                best = {score, candidate};
        }
    }
}

// The first candidate of the vector in which the largest cross stands, or -1 if none is above 0.
int32_t vectorOfLargest(const double *crosses, int32_t candidates)
{
    Doubles most = {};
    Longs at = allLanes<Longs>(int64_t{-1});
    for (int32_t first = 0; first < candidates; first += doubleLanes) {
        const auto cross = load<Doubles>(crosses + first);
        const Longs isMore = cross > most;
        most = isMore ? cross : most;
        at = isMore ? allLanes<Longs>(int64_t{first}) : at;
    }
    int32_t lane = 0;
    for (int32_t other = 1; other < doubleLanes; ++other)
        if (most[other] > most[lane])
            lane = other;
    return static_cast<int32_t>(at[lane]);
}

int32_t bestCandidate(const Search &search)
{
    __builtin_memcpy(search.shifted, search.grid + gridPerPoint,
                     static_cast<size_t>(search.gridRoom - gridPerPoint) * sizeof(double));
    for (int32_t i = 0; i < search.points; ++i)
        search.wideReference[i] = static_cast<double>(search.reference[i]);
    sumCrosses(search);
    for (int32_t j = search.candidates; j % doubleLanes != 0; ++j)
        search.crosses[j] = -1.0; // what fills the last vector up never wins

    Best best;
    const int32_t first = vectorOfLargest(search.crosses, search.candidates);
    if (first < 0)
        return 0;
    int32_t firsts[atOnce] = {first, first, first, first, first, first, first, first};
    takeIn(best, search, firsts);

    int32_t count = 0;
    for (int32_t j = 0; j < search.candidates; j += doubleLanes) {
        if (!isAnySet(load<Doubles>(search.crosses + j) >= best.score))
            continue;
        firsts[count++] = j;
        if (count == atOnce) {
            takeIn(best, search, firsts);
            count = 0;
        }
    }
    if (count > 0)
        takeIn(best, search, firsts); // some of them once more, to no effect
    return best.candidate;
}

// What plain.cpp computes for each sample.
void crossFade(const float *ramp, const float *next, float *overlap, int32_t count)
{
    int32_t i = 0;
    for (; i <= count - doubleLanes; i += doubleLanes) {
        const auto w = load<HalfFloats>(ramp + i);
        const HalfFloats rising = w * load<HalfFloats>(next + i);
        const Doubles falling = (1.0 - widen(w)) * widen(load<HalfFloats>(overlap + i));
        store(overlap + i, narrow(falling + widen(rising)));
    }
    kernelsAt<SolafsKernels, Level::plain>().crossFade(ramp + i, next + i, overlap + i, count - i);
}

} // namespace
} // namespace ORVA_LEVEL

template <> const SolafsKernels &kernelsAt<SolafsKernels, Level::ORVA_LEVEL>()
{
    static constexpr SolafsKernels table = {ORVA_LEVEL::takeEveryFourth, ORVA_LEVEL::bestCandidate,
                                            ORVA_LEVEL::crossFade};
    return table;
}

} // namespace orva
