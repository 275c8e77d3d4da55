#include "solafs/kernels/ORVAsolafs_kernels.h"

#include <cmath>

namespace orva
{
namespace plain
{
namespace
{

void takeEveryFourth(const float *from, float *to, int32_t count)
{
    for (int64_t i = 0; i < count; ++i)
        to[i] = from[4 * i];
}

// With r the reference and x the input at the comparison points of candidate j, sums over i = 0, 1, 2 ... in order:
//     energy(j) = 1 + sum x(2i + j)^2
//     cross(j) = sum r(i) x(2i + j)
//     score(j) = cross(j) / sqrt(energy(j))
int32_t bestCandidate(const Search &search)
{
    int32_t winner = 0;
    double best = 0.0;
    for (int32_t j = 0; j < search.candidates; ++j) {
        double energy = 1.0;
        double cross = 0.0;
        for (int32_t i = 0; i < search.points; ++i) {
            const auto x = static_cast<double>(search.grid[gridPerPoint * i + j]);
            energy += x * x;
            cross += static_cast<double>(search.reference[i]) * x;
        }
        const double score = cross / std::sqrt(energy);
        if (score > best) {
            best = score;
            winner = j;
        }
    }
    return winner;
}

// v[i] = (1 - w[i]) p[i] + w[i] x[i]
// from the old signal p into the new one x. The product w x is rounded to float, the rest is double.
void crossFade(const float *ramp, const float *next, float *overlap, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const float rising = ramp[i] * next[i];
        const double falling = (1.0 - static_cast<double>(ramp[i])) * static_cast<double>(overlap[i]);
        overlap[i] = static_cast<float>(falling + static_cast<double>(rising));
    }
}

} // namespace
} // namespace plain

template <> const SolafsKernels &kernelsAt<SolafsKernels, Level::plain>()
{
    static constexpr SolafsKernels table = {plain::takeEveryFourth, plain::bestCandidate, plain::crossFade};
    return table;
}

} // namespace orva
