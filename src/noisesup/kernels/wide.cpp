#include "common/lanes.h"
#include "noisesup/kernels/ORVAnoisesup_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

using Words [[gnu::vector_size(ORVA_VECTOR_BYTES / 2)]] = int16_t; // as many as Floats has lanes

void widenBand(const int16_t *samples, float *band, int32_t count)
{
    int32_t i = 0;
    for (; i <= count - floatLanes; i += floatLanes) {
        const Ints whole = __builtin_convertvector(load<Words>(samples + i), Ints);
        store(band + i, __builtin_convertvector(whole, Floats));
    }
    kernelsAt<NoisesupKernels, Level::plain>().widenBand(samples + i, band + i, count - i);
}

// Each limit in its turn, so that what reaches the conversion, which cuts toward zero, is within 16 bits.
void narrowBand(const float *band, int16_t *samples, int32_t count)
{
    int32_t i = 0;
    for (; i <= count - floatLanes; i += floatLanes) {
        const auto v = load<Floats>(band + i);
        const Floats number = v == v ? v : 0.0f;
        const Floats notAbove = number > 32767.0f ? 32767.0f : number;
        const Floats limited = notAbove < -32678.0f ? -32768.0f : notAbove;
        store(samples + i, __builtin_convertvector(__builtin_convertvector(limited, Ints), Words));
    }
    kernelsAt<NoisesupKernels, Level::plain>().narrowBand(band + i, samples + i, count - i);
}

} // namespace
} // namespace ORVA_LEVEL

template <> const NoisesupKernels &kernelsAt<NoisesupKernels, Level::ORVA_LEVEL>()
{
    static constexpr NoisesupKernels table = {ORVA_LEVEL::widenBand, ORVA_LEVEL::narrowBand};
    return table;
}

} // namespace orva
