#include "widths.h"

#include <sleef.h>

#include <cstring>

namespace ORVA_LEVEL
{
namespace
{

using Floats [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = float;

Floats logarithmOf(Floats x)
{
#if ORVA_VECTOR_BYTES == 64
    return Sleef_logf16_u35avx512f(x);
#elif ORVA_VECTOR_BYTES == 32
    return Sleef_logf8_u35avx2(x);
#else
    return Sleef_logf4_u35(x);
#endif
}

void logarithms(const float *input, float *output, size_t count)
{
    for (size_t i = 0; i < count; i += sizeof(Floats) / sizeof(float)) {
        Floats x;
        std::memcpy(&x, input + i, sizeof x);
        x = logarithmOf(x);
        std::memcpy(output + i, &x, sizeof x);
    }
}

// The chains depend on nothing but themselves; six of each keep two units of each kind busy, four and eight cycles long.
template <class Real> Real peak(size_t rounds, Real one)
{
    using Vector [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = Real;
    Vector products[peakOperations], sums[peakOperations], all{};
    for (size_t i = 0; i < peakOperations; ++i)
        products[i] = sums[i] = all + one;
    const Vector factor = products[0];
    for (; rounds > 0; --rounds)
        for (size_t i = 0; i < peakOperations; ++i) {
            products[i] *= factor;
            sums[i] += factor;
        }
    for (size_t i = 0; i < peakOperations; ++i)
        all += products[i] + sums[i];
    return all[0];
}

} // namespace

extern const Width width;
const Width width = {ORVA_VECTOR_BYTES, logarithms, peak<float>, peak<double>};

} // namespace ORVA_LEVEL
