#include <orva/ORVAmisc.h>

#include "measures/kernels/ORVAmeasures_kernels.h"

#include <cmath>

using namespace orva;

// variance = (sum of x^2) / n - ((sum of x) / n)^2, all in float, the sums in index order
float ORVA_CalcEnergy(const float *input, int32_t length)
{
    if (length <= 0)
        return 0.0f;
    float sum = 0.0f;
    float squares = 0.0f;
    for (int32_t i = 0; i < length; ++i) {
        sum += input[i];
        squares += input[i] * input[i];
    }
    const auto count = static_cast<float>(length);
    const float mean = sum / count;
    const float variance = squares / count - mean * mean;
    if (!(variance > 0.0f))
        return 0.0f;
    return static_cast<float>(10.0 * std::log10(static_cast<double>(variance) / 0.32768));
}

float ORVA_CalcZeroCrossRate(const float *input, int32_t length)
{
    const int32_t crossings = kernels<MeasuresKernels>().crossings(input, length);
    return static_cast<float>(crossings) / static_cast<float>(length);
}

// y[n] = a1 y[n-1] + a2 y[n-2] + b0 x[n] + b1 x[n-1] + b0 x[n-2]
// All five are exact single-precision numbers. Rounded so, the numerator does not quite sum to zero: the gain
// at zero frequency is 0.010007, on which stored results depend.
void ORVA_RemoveDC(const float *input, float *output, int32_t length)
{
    constexpr double a1 = 1.9059464931488037;
    constexpr double a2 = -0.9114024043083191;
    constexpr double b0 = 0.9272743463516235;
    constexpr double b1 = -1.8544940948486328;
    double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
    for (int32_t n = 0; n < length; ++n) {
        const auto x = static_cast<double>(input[n]);
        const double y = a1 * y1 + a2 * y2 + b0 * x + b1 * x1 + b0 * x2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        output[n] = static_cast<float>(y);
    }
}
