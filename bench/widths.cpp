#include "widths.h"

#include "common/lanes.h"

#include <sleef.h>

#include <cstring>

namespace ORVA_LEVEL
{
namespace
{

using orva::ORVA_LEVEL::Floats;

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

// Each gives one what it was given, which no compiler knows.
float sections(size_t rounds)
{
    using namespace orva::ORVA_LEVEL;
    HalfFloats y[peakSections];
    for (HalfFloats &one : y)
        one = HalfFloats{} + 1.0f;
    for (; rounds > 0; --rounds)
        for (HalfFloats &one : y) {
            const Doubles x = widen(one);
            const Doubles w = (x - x * 0.25) - x * 0.125;
            one = narrow((w * 0.5 + x * 0.375) + x * 0.3125);
        }
    for (size_t i = 1; i < peakSections; ++i)
        y[0] += y[i];
    return y[0][0];
}

float read(const float *from, size_t bytes)
{
    Floats sums[4] = {};
    for (size_t i = 0; i < bytes / sizeof(float); i += 4 * sizeof(Floats) / sizeof(float))
        for (size_t k = 0; k < 4; ++k) {
            Floats x;
            std::memcpy(&x, from + i + k * sizeof(Floats) / sizeof(float), sizeof x);
            sums[k] += x;
        }
    return (sums[0] + sums[1] + sums[2] + sums[3])[0];
}

} // namespace

extern const Width width;
const Width width = {ORVA_VECTOR_BYTES, logarithms, peak<float>, peak<double>, sections, read};

} // namespace ORVA_LEVEL
