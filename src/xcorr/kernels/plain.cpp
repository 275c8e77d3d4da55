#include "xcorr/kernels/ORVAxcorr_kernels.h"

#include <cmath>

namespace orva
{

namespace
{

ORVA_COMPLEX weighed(ORVA_COMPLEX product, float g)
{
    const float p = product.re * product.re + product.im * product.im;
    const double m = std::sqrt(static_cast<double>(p));
    if (!(m > 0.0))
        return product;
    const double w = static_cast<double>(g) / m;
    return {static_cast<float>(static_cast<double>(product.re) * w),
            static_cast<float>(static_cast<double>(product.im) * w)};
}

} // namespace

void weighPlainly(ORVA_COMPLEX *products, int32_t bins, float g)
{
    for (int32_t k = 0; k < bins; ++k)
        products[k] = weighed(products[k], g);
}

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

// The products in float.
void combinePhat(const ORVA_COMPLEX *X, const ORVA_COMPLEX *Y, ORVA_COMPLEX *output, int32_t bins, float g)
{
    for (int32_t k = 0; k < bins; ++k) {
        const ORVA_COMPLEX x = X[k];
        const ORVA_COMPLEX y = Y[k];
        output[k] = weighed({x.re * y.re + x.im * y.im, x.im * y.re - x.re * y.im}, g);
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
