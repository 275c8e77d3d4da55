#include "xcorr/kernels/ORVAxcorr_kernels.h"

#include <cmath>

namespace orva
{
namespace plain
{
namespace
{

// All in float.
void combinePlain(const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y, ORVA_COMPLEX *output, int32_t bins, float s)
{
    for (int32_t k = 0; k < bins; ++k) {
        const ORVA_COMPLEX x = X[k];
        const ORVA_COMPLEX y = Y[k];
        output[k] = {(x.im * y.im + x.re * y.re) * s, (x.im * y.re - x.re * y.im) * s};
    }
}

// The product in float, the weight g / m of a bin of magnitude m in double. A bin of magnitude zero stays as it is.
void combinePhat(const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y, ORVA_COMPLEX *output, int32_t bins, float g)
{
    for (int32_t k = 0; k < bins; ++k) {
        const ORVA_COMPLEX x = X[k];
        const ORVA_COMPLEX y = Y[k];
        float re = x.re * y.re + x.im * y.im;
        float im = x.im * y.re - x.re * y.im;
        const float p = re * re + im * im;
        const double m = std::sqrt(static_cast<double>(p));
        if (m > 0.0) {
            const double w = static_cast<double>(g) / m;
            re = static_cast<float>(static_cast<double>(re) * w);
            im = static_cast<float>(static_cast<double>(im) * w);
        }
        output[k] = {re, im};
    }
}

} // namespace
} // namespace plain

template <> const XcorrKernels &kernelsAt<XcorrKernels, Level::plain>()
{
    static constexpr XcorrKernels table = {plain::combinePlain, plain::combinePhat};
    return table;
}

} // namespace orva
