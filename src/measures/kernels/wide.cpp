#include "common/lanes.h"
#include "measures/kernels/ORVAmeasures_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

// Each lane counts every so many-th pair; a comparison that holds is -1.
int32_t crossings(const float *input, int32_t length)
{
    Ints counts = {};
    int32_t i = 0;
    for (; length - i > floatLanes; i += floatLanes) // of any length, the most negative one too
        counts -= load<Floats>(input + i) * load<Floats>(input + i + 1) < 0.0f;
    int32_t count = kernelsAt<MeasuresKernels, Level::plain>().crossings(input + i, length - i);
#pragma GCC unroll 16
    for (int32_t lane = 0; lane < floatLanes; ++lane)
        count += counts[lane];
    return count;
}

} // namespace
} // namespace ORVA_LEVEL

template <> const MeasuresKernels &kernelsAt<MeasuresKernels, Level::ORVA_LEVEL>()
{
    static constexpr MeasuresKernels table = {ORVA_LEVEL::crossings};
    return table;
}

} // namespace orva
