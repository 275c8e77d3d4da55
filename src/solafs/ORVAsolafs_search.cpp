// The search for the skew at which the input best continues what has just been played. It is what time
// scaling costs.
//
// With r the reference and x the input at the comparison points of candidate j, over i = 0, 1, 2 ... in
// order:
//
//     cross(j) = sum r(i) x(2i + j)     energy(j) = 1 + sum x(2i + j)^2     score = cross / sqrt(energy)
//
// Points lie 8 samples apart and candidates 4, so all of it happens on a grid of every fourth sample, on
// which candidate j begins at j and takes every second one. Two things make it fast without touching a bit:
//
// Every sum keeps its order, but several candidates, which lie side by side on the grid, are summed at once.
//
// The energy is at least 1, so no score exceeds its cross. A group of candidates in which no cross beats the
// best score so far cannot win and needs no energies; nor does such a candidate need its root and quotient.
#include "solafs/ORVAsolafs_internal.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr int32_t groupSize = 32; // candidates to one grid
constexpr int32_t chunkSize = 64; // comparison points to one grid
constexpr int32_t gridPerPoint = correlationStep / skewStep;

// Two neighbouring candidates.
typedef double Pair __attribute__((vector_size(2 * sizeof(double))));
constexpr size_t pairsAtOnce =
    8; // enough independent sums to keep the adders busy, and few enough for the registers

struct Sums {
    std::array<double, groupSize> values;
};

} // namespace

static inline Pair _PairAt(const double *x)
{
    Pair pair;
    std::memcpy(&pair, x, sizeof pair);
    return pair;
}

// sum(j) += factor(i, x(2i + j)) * x(2i + j), for i in ascending order.
template <class Factor>
static inline void _AddProducts(Sums &sums, const double *grid, int32_t points, Factor factor)
{
    for (size_t first = 0; first < groupSize; first += 2 * pairsAtOnce) {
        double *target = &sums.values[first];
        Pair sum[pairsAtOnce];
        std::memcpy(sum, target, sizeof sum);
        const double *row = grid + first;
        for (int32_t i = 0; i < points; ++i, row += gridPerPoint) {
#pragma GCC unroll 8
            for (size_t pair = 0; pair < pairsAtOnce; ++pair) {
                const Pair x = _PairAt(row + 2 * pair);
                sum[pair] += factor(i, x) * x;
            }
        }
        std::memcpy(target, sum, sizeof sum);
    }
}

// Calls add(grid, first point, points) for the comparison points in turn, as many at once as a grid holds.
// `origin` is the stream position of the first point of the group's first candidate.
template <class Add>
static void _ForEachChunk(const ORVA_SOLAFS *solafs, int64_t origin, int32_t points, Add add)
{
    for (int32_t point = 0; point < points; point += chunkSize) {
        const int32_t count = std::min(chunkSize, points - point);
        std::array<double, gridPerPoint * chunkSize + groupSize> grid;
        _ReadStretch(solafs, origin + int64_t{correlationStep} * point, skewStep, grid.data(),
                     gridPerPoint * (count - 1) + groupSize);
        add(grid.data(), point, count);
    }
}

// Sets the skew to the first of the best candidates, or to 0 if none correlates positively. `analysis` is the
// position of this hop; overlap holds the continuation of the last match.
void _FindSkew(ORVA_SOLAFS *solafs, int32_t analysis)
{
    const int32_t points = solafs->similarityLength / correlationStep;
    float *reference = solafs->reference;
    for (int32_t i = 0; i < points; ++i)
        reference[i] = solafs->overlap[solafs->referenceOffsets[i] + solafs->overlapLength - 1];

    int32_t skew = 0;
    double best = 0.0;
    const int32_t candidates = points > 0 ? solafs->maxSkew / skewStep : 0; // without points every score is 0
    for (int32_t first = 0; first < candidates; first += groupSize) {
        const int64_t origin =
            int64_t{analysis} + int64_t{skewStep} * first + solafs->referenceOffsets[0] - 1;
        const auto count = static_cast<size_t>(std::min(groupSize, candidates - first));
        Sums cross;
        cross.values.fill(0.0);
        _ForEachChunk(solafs, origin, points, [&](const double *grid, int32_t point, int32_t length) {
            _AddProducts(cross, grid, length,
                         [=](int32_t i, Pair) { return static_cast<double>(reference[point + i]); });
        });
        const auto beatsBest = [&best](double value) { return value > best; };
        if (std::none_of(cross.values.begin(), cross.values.begin() + count, beatsBest))
            continue;
        Sums energy;
        energy.values.fill(1.0); // so that silence scores 0
        _ForEachChunk(solafs, origin, points, [&](const double *grid, int32_t, int32_t length) {
            _AddProducts(energy, grid, length, [](int32_t, Pair x) { return x; });
        });
        for (size_t j = 0; j < count; ++j) {
            if (!beatsBest(cross.values[j]))
                continue;
            const double score = cross.values[j] / std::sqrt(energy.values[j]);
            if (score > best) {
                best = score;
                skew = skewStep * (first + static_cast<int32_t>(j));
            }
        }
    }
    solafs->skew = skew;
}
