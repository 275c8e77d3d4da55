#include "resample/kernels/ORVAresample_kernels.h"

#include <cmath>

namespace orva
{
namespace plain
{
namespace
{

bool widen(const float *input, double *output, int32_t count)
{
    bool allFinite = true;
    for (int32_t i = 0; i < count; ++i) {
        output[i] = static_cast<double>(input[i]);
        allFinite = allFinite && std::isfinite(input[i]);
    }
    return allFinite;
}

void narrow(const double *input, float *output, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        output[i] = static_cast<float>(input[i]);
}

// With i = floor(n M / L), the newest sample of output n, and p = n M - i L, its phase:
//
//     y[n] = sum over j = 0 .. taps - 1 of h[p + j L] x[i - j]
//
// from 0 on, in the precision of `Sum` after each product.
template <class Sum> float sumOf(const PolyphaseBank &bank, BankPlace at, const double *newest)
{
    Sum sum = 0;
    for (int32_t j = 0; j < bank.taps; ++j) {
        sum = static_cast<Sum>(static_cast<double>(sum) + *at.coefs * newest[-j]);
        goToOlderSample(bank, at);
    }
    return static_cast<float>(sum);
}

template <class Sum> void sumsOf(const PolyphaseBank &bank, const OutputSpan &span, float *output)
{
    for (int32_t k = 0; k < span.count; ++k) {
        const int64_t n = span.firstOutput + k;
        const int64_t i = newestSample(bank, n);
        output[k] = sumOf<Sum>(bank, placeOf(bank, n), span.samples + (i - span.firstSample));
    }
}

// Output n is sample floor(n M / L).
int32_t hold(const double *samples, int32_t count, float *output, uint32_t up, uint32_t down, uint32_t *phase)
{
    uint32_t next = *phase;
    int32_t written = 0;
    for (int32_t i = 0; i < count; ++i) {
        for (; next < up; next += down)
            output[written++] = static_cast<float>(samples[i]);
        next -= up;
    }
    *phase = next;
    return written;
}

} // namespace
} // namespace plain

template <> const ResampleKernels &kernelsAt<ResampleKernels, Level::plain>()
{
    static constexpr ResampleKernels table = {plain::widen, plain::narrow, plain::sumsOf<double>,
                                              plain::sumsOf<float>, plain::hold};
    return table;
}

} // namespace orva
