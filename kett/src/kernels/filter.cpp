// The block filter with its states in registers, which takes a number of coefficients that is known. Each state goes
// through memory from sample to sample else, and its way there is longer than the arithmetic.
//
//     y    = b[0] x + s[0]
//     s[k] = (b[k+1] x + s[k+1]) - a[k+1] y     for k = 0 .. n-2
#include "kernels/kernels.h"

namespace kett::wide
{

namespace
{

template <int32_t n>
void filterKnown(const double *a, const double *b, double *state, const float *input, double *output,
                 int32_t sampleCount)
{
    double s[n];
#pragma GCC unroll 16
    for (int32_t k = 0; k < n; ++k)
        s[k] = state[k];
    for (int32_t i = 0; i < sampleCount; ++i) {
        const auto x = static_cast<double>(input[i]);
        const double y = b[0] * x + s[0];
#pragma GCC unroll 16
        for (int32_t k = 0; k < n - 1; ++k)
            s[k] = (b[k + 1] * x + s[k + 1]) - a[k + 1] * y;
        output[i] = y;
    }
#pragma GCC unroll 16
    for (int32_t k = 0; k < n - 1; ++k)
        state[k] = s[k];
}

constexpr int32_t least = 2;

// Up to ten states, beside which there are registers left for what is on its way.
constexpr decltype(&filterKnown<least>) known[] = {
    filterKnown<2>, filterKnown<3>, filterKnown<4>, filterKnown<5>,  filterKnown<6>,
    filterKnown<7>, filterKnown<8>, filterKnown<9>, filterKnown<10>, filterKnown<11>,
};
constexpr auto most = least + static_cast<int32_t>(sizeof known / sizeof known[0]) - 1;

} // namespace

void filterBlock(const double *denominator, const double *numerator, int32_t coefficientCount, double *state,
                 const float *input, double *output, int32_t sampleCount)
{
    if (coefficientCount < least || coefficientCount > most)
        plain::filterBlock(denominator, numerator, coefficientCount, state, input, output, sampleCount);
    else
        known[coefficientCount - least](denominator, numerator, state, input, output, sampleCount);
}

} // namespace kett::wide
