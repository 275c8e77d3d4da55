#include "measures/kernels/ORVAmeasures_kernels.h"

namespace orva
{
namespace plain
{
namespace
{

int32_t crossings(const float *input, int32_t length)
{
    int32_t count = 0;
    for (int32_t i = 1; i < length; ++i)
        if (input[i - 1] * input[i] < 0.0f)
            ++count;
    return count;
}

} // namespace
} // namespace plain

template <> const MeasuresKernels &kernelsAt<MeasuresKernels, Level::plain>()
{
    static constexpr MeasuresKernels table = {plain::crossings};
    return table;
}

} // namespace orva
