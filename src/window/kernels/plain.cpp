#include "window/kernels/ORVAwindow_kernels.h"

#include <cmath>

namespace orva
{

double cosineSumAt(const CosineSum &sum, double p)
{
    double value = sum.a[0];
    for (int32_t k = 1; k < sum.count; ++k)
        value = value + sum.a[k] * std::cos(p * k);
    return value;
}

namespace plain
{
namespace
{

void apply(const float *window, float *data, int32_t length)
{
    for (int32_t i = 0; i < length; ++i)
        data[i] = data[i] * window[i];
}

void fill(const CosineSum &sum, double step, float *w, uint32_t count)
{
    double p = 0.0;
    for (uint32_t i = 0; i < count; ++i) {
        w[i] = static_cast<float>(cosineSumAt(sum, p));
        p = p + step;
    }
}

} // namespace
} // namespace plain

template <> const WindowKernels &kernelsAt<WindowKernels, Level::plain>()
{
    static constexpr WindowKernels table = {plain::apply, plain::fill};
    return table;
}

} // namespace orva
