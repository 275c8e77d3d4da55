// The search in two steps. First all scores in float, off by a known margin; then, in double and in the order of plain.cpp,
// those of the candidates that the margin leaves in the running, mostly one or two vectors of them.
//
// Lanes are candidates, which lie side by side on the grid. A point lies two places after the one before; copies of the
// grid, each shifted by two places, make the vector of every point one that is loaded from a multiple of 32 bytes:
//
//     copy 0    g0 g1 g2 g3 g4 g5 g6 g7 | ...     points 0, 4 ...
//     copy 1    g2 g3 g4 g5 g6 g7 g8 g9 | ...     points 1, 5 ...
//     copy 2    g4 ...                            points 2, 6 ...
//     copy 3    g6 ...                            points 3, 7 ...
//
// The margin. With n points, R^2 = sum r^2 and E = sum x^2, a sum of products in float is off by at most n 2^-24 R sqrt(E),
// and E by n 2^-24 of itself; so scores are off by less than twice n 2^-24 R sqrt(E / (1 + E)) at the largest E. It is taken
// four times as wide. Outside of ordinary ranges nothing is left out: there the margin would have to tell of overflow, of
// subnormal numbers and of what is no number.
#include "common/lanes.h"
#include "solafs/kernels/ORVAsolafs_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

// Independent sums: enough to keep the adders busy, few enough for the registers.
constexpr int32_t atOnce = 8;
constexpr int32_t block = atOnce * floatLanes;
static_assert(candidateGroup % block == 0);

constexpr int32_t energyPoints = 8; // summed once for all the candidates that share them

template <class Mask> bool isAnySet(Mask lanes)
{
    using Longs [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = int64_t;
    const auto longs = reinterpret_cast<Longs>(lanes);
    int64_t all = 0;
#pragma GCC unroll 8
    for (int32_t lane = 0; lane < doubleLanes; ++lane)
        all |= longs[lane];
    return all != 0;
}

float largestLane(Floats lanes)
{
    float largest = lanes[0];
    for (int32_t lane = 1; lane < floatLanes; ++lane)
        largest = lanes[lane] > largest ? lanes[lane] : largest;
    return largest;
}

void takeEveryFourth(const float *from, float *to, int32_t count)
{
    int32_t i = 0;
    for (; i < count - floatLanes; i += floatLanes) { // the last vector would read beyond its samples
        const float *part = from + int64_t{4} * i;
        const Floats low = evens(load<Floats>(part), load<Floats>(part + floatLanes));
        const Floats high =
            evens(load<Floats>(part + int64_t{2} * floatLanes), load<Floats>(part + int64_t{3} * floatLanes));
        store(to + i, evens(low, high));
    }
    kernelsAt<SolafsKernels, Level::plain>().takeEveryFourth(from + int64_t{4} * i, to + i, count - i);
}

// Calls use(point, row) for the points begin .. end - 1 of the candidates from `first` on; begin is a multiple of gridCopies.
template <class Use>
[[gnu::always_inline]] inline void forPoints(const Search &search, int32_t first, int32_t begin, int32_t end,
                                             Use use)
{
    const float *row = search.grid + first + int64_t{gridPerPoint} * begin;
    for (int32_t i = begin; i < end; i += gridCopies, row += int64_t{gridPerPoint} * gridCopies)
        for (int32_t copy = 0; copy < gridCopies && i + copy < end; ++copy)
            use(i + copy, row + copy * search.gridRoom);
}

// eights[g] = sum of x^2 over the first eight points of a candidate at place g
void sumEights(const Search &search)
{
    const int32_t end = search.candidates + gridPerPoint * (search.points - energyPoints);
    for (int32_t first = 0; first < end; first += block) {
        Floats sum[atOnce] = {};
        forPoints(search, first, 0, energyPoints, [&](int32_t, const float *row) {
#pragma GCC unroll 8
            for (int64_t v = 0; v < atOnce; ++v) {
                const auto x = load<Floats>(row + v * floatLanes);
                sum[v] += x * x;
            }
        });
#pragma GCC unroll 8
        for (int64_t v = 0; v < atOnce; ++v)
            store(search.eights + first + v * floatLanes, sum[v]);
    }
}

// The energies in float, without the 1, into `scores`. Gives the largest.
float estimateEnergies(const Search &search)
{
    const int32_t inEights = search.points - search.points % energyPoints;
    Floats largest = {};
    for (int32_t first = 0; first < search.candidates; first += block) {
        Floats energy[atOnce] = {};
        for (int32_t i = 0; i < inEights; i += energyPoints) {
            const float *row = search.eights + int64_t{gridPerPoint} * i + first;
#pragma GCC unroll 8
            for (int64_t v = 0; v < atOnce; ++v)
                energy[v] += load<Floats>(row + v * floatLanes);
        }
        forPoints(search, first, inEights, search.points, [&](int32_t, const float *row) {
#pragma GCC unroll 8
            for (int64_t v = 0; v < atOnce; ++v) {
                const auto x = load<Floats>(row + v * floatLanes);
                energy[v] += x * x;
            }
        });
#pragma GCC unroll 8
        for (int64_t v = 0; v < atOnce; ++v) {
            store(search.scores + first + v * floatLanes, energy[v]);
            largest = energy[v] > largest ? energy[v] : largest;
        }
    }
    return largestLane(largest);
}

// The scores in float, each as score |score|, which takes no root. `scores` holds the energies.
void estimateScores(const Search &search)
{
    for (int32_t first = 0; first < search.candidates; first += block) {
        Floats cross[atOnce] = {};
        forPoints(search, first, 0, search.points, [&](int32_t point, const float *row) {
            const auto r = allLanes<Floats>(search.reference[point]);
#pragma GCC unroll 8
            for (int64_t v = 0; v < atOnce; ++v)
                cross[v] += r * load<Floats>(row + v * floatLanes);
        });
#pragma GCC unroll 8
        for (int64_t v = 0; v < atOnce; ++v) {
            float *score = search.scores + first + v * floatLanes;
            const Floats size = cross[v] < 0.0f ? -cross[v] : cross[v];
            store(score, cross[v] * size / (load<Floats>(score) + 1.0f));
        }
    }
    for (int32_t j = search.candidates; j % block != 0; ++j)
        search.scores[j] = -1.0f; // no candidate
}

float largestScore(const Search &search)
{
    Floats largest = {};
    for (int32_t first = 0; first < search.candidates; first += floatLanes) {
        const auto score = load<Floats>(search.scores + first);
        largest = score > largest ? score : largest;
    }
    return largestLane(largest);
}

double powerOf(const float *reference, int32_t points)
{
    double power = 0.0;
    for (int32_t i = 0; i < points; ++i) {
        const auto r = static_cast<double>(reference[i]);
        power += r * r;
    }
    return power;
}

// What an estimated score |score| must reach for its candidate to be in the running; minus infinity when all are.
// `power` is that of the reference.
float leastScore(const Search &search, double power, float largestEnergy)
{
    constexpr double large = 1e18;
    constexpr double small = 1e-30;
    const auto best = static_cast<double>(largestScore(search));
    const auto energy = static_cast<double>(largestEnergy);
    const double margin =
        8.0 * (search.points + 8) * 0x1p-24 * __builtin_sqrt(power * energy / (1.0 + energy));
    const double least = __builtin_sqrt(best) - margin;
    const bool isOrdinary = best > small && power < large && energy < large && least > 0.0;
    return isOrdinary ? static_cast<float>(least * least) : -__builtin_inff();
}

struct Best {
    double score = 0.0;
    int32_t candidate = 0;
};

// Takes in the exact scores of the candidates of two vectors of floats, which begin at these.
void takeInTwo(Best &best, const Search &search, const int32_t (&firsts)[2])
{
    constexpr int32_t parts = 4;
    const int32_t starts[parts] = {firsts[0], firsts[0] + doubleLanes, firsts[1], firsts[1] + doubleLanes};
    Doubles cross[parts] = {};
    Doubles energy[parts];
#pragma GCC unroll 4
    for (int32_t part = 0; part < parts; ++part)
        energy[part] = allLanes<Doubles>(1.0);
    for (int32_t i = 0; i < search.points; ++i) {
        const float *row = search.grid + int64_t{gridPerPoint} * i;
        const auto r = allLanes<Doubles>(static_cast<double>(search.reference[i]));
#pragma GCC unroll 4
        for (int32_t part = 0; part < parts; ++part) {
            const Doubles x = widen(load<HalfFloats>(row + starts[part]));
            energy[part] += x * x;
            cross[part] += r * x;
        }
    }
    double crosses[parts * doubleLanes];
    double energies[parts * doubleLanes];
    __builtin_memcpy(crosses, cross, sizeof crosses);
    __builtin_memcpy(energies, energy, sizeof energies);
    for (int32_t i = 0; i < parts * doubleLanes; ++i) {
        const int32_t candidate = firsts[i / floatLanes] + i % floatLanes;
        // A root and a quotient only for what comes near; the factor makes room for the roundings.
        const double near = (1.0 - 1e-9) * best.score * best.score * energies[i];
        if (!(crosses[i] > 0.0 && crosses[i] * crosses[i] > near) || candidate >= search.candidates)
            continue;
        const double score = crosses[i] / __builtin_sqrt(energies[i]);
        if (score > best.score)
            best = {score, candidate};
    }
}

int32_t bestCandidate(const Search &search)
{
    const double power = powerOf(search.reference, search.points);
    if (power == 0.0) // silence, which correlates with nothing
        return 0;
    const int64_t used = gridPerPoint * (search.points - 1) + search.candidates + block;
    for (int64_t copy = 1; copy < gridCopies; ++copy)
        __builtin_memcpy(search.grid + copy * search.gridRoom, search.grid + copy * gridPerPoint,
                         static_cast<size_t>(used - copy * gridPerPoint) * sizeof(float));
    sumEights(search);
    const float energy = estimateEnergies(search);
    estimateScores(search);
    const float least = leastScore(search, power, energy);

    Best best;
    int32_t firsts[2];
    int32_t count = 0;
    const auto isInTheRunning = [&](int32_t first) { return ~(load<Floats>(search.scores + first) < least); };
    for (int32_t first = 0; first < search.candidates; first += block) {
        Ints any = {};
#pragma GCC unroll 8
        for (int32_t v = 0; v < atOnce; ++v)
            any |= isInTheRunning(first + v * floatLanes);
        if (!isAnySet(any))
            continue;
        for (int32_t v = 0; v < atOnce; ++v) {
            if (!isAnySet(isInTheRunning(first + v * floatLanes)))
                continue;
            firsts[count++] = first + v * floatLanes;
            if (count == 2) {
                takeInTwo(best, search, firsts);
                count = 0;
            }
        }
    }
    if (count > 0) {
        firsts[1] = firsts[0];
        takeInTwo(best, search, firsts);
    }
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
