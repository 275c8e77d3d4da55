#include "noisesup/kernels/ORVAnoisesup_kernels.h"

#include <cmath>

namespace orva
{

int16_t narrowed(float v)
{
    if (v > 32767.0f)
        return 32767;
    if (v < -32678.0f)
        return -32768;
    return std::isnan(v) ? int16_t{0} : static_cast<int16_t>(v);
}

namespace plain
{
namespace
{

void widenBand(const int16_t *samples, float *band, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        band[i] = static_cast<float>(samples[i]);
}

void narrowBand(const float *band, int16_t *samples, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        samples[i] = narrowed(band[i]);
}

} // namespace
} // namespace plain

template <> const NoisesupKernels &kernelsAt<NoisesupKernels, Level::plain>()
{
    static constexpr NoisesupKernels table = {plain::widenBand, plain::narrowBand};
    return table;
}

} // namespace orva
