#include <orva/ORVAspline.h>

#include "common/memory.h"
#include "interpolate/kernels/ORVAinterpolate_kernels.h"

#include <kett/KTdebug.h>

#include <cstdlib>
#include <limits>

using namespace orva;

namespace orva
{
namespace
{

// A slope above this asks for a natural end. Compared in double: the float nearest to it lies above.
constexpr double naturalSlope = 9.9e+29;

bool isNatural(float slope)
{
    return static_cast<double>(slope) > naturalSlope;
}

// Right-hand side of the row of a clamped end: 3 / h times the difference between two slopes.
float clampedEnd(float slopeDifference, float h)
{
    const double g = 3.0 / static_cast<double>(h);
    return static_cast<float>(static_cast<double>(slopeDifference) * g);
}

void firstRow(const float *x, const float *y, float yp1, float *u, float *y2)
{
    if (isNatural(yp1)) {
        u[0] = 0.0f;
        y2[0] = 0.0f;
        return;
    }
    const float h = x[1] - x[0];
    const float s = (y[1] - y[0]) / h;
    y2[0] = -0.5f;
    u[0] = clampedEnd(s - yp1, h);
}

// Forward sweep of the tridiagonal system, one row for each inner point; s[i] is the slope from point i to i + 1:
//     sig = (x[i] - x[i-1]) / (x[i+1] - x[i-1])
//     p = sig y2[i-1] + 2
//     y2[i] = (sig - 1) / p
//     u[i] = (6 (s[i] - s[i-1]) / (x[i+1] - x[i-1]) - sig u[i-1]) / p
void decompose(const float *x, const float *y, int32_t n, float *u, float *y2)
{
    for (int32_t i = 1; i <= n - 2; ++i) {
        const float width = x[i + 1] - x[i - 1];
        const float sig = (x[i] - x[i - 1]) / width;
        const float pRounded = sig * y2[i - 1] + 2.0f;
        const double p = static_cast<double>(pRounded);
        y2[i] = static_cast<float>((static_cast<double>(sig) - 1.0) / p);
        const float e = (y[i + 1] - y[i]) / (x[i + 1] - x[i]) - (y[i] - y[i - 1]) / (x[i] - x[i - 1]);
        const float carried = sig * u[i - 1];
        u[i] = static_cast<float>(
            (static_cast<double>(e) * 6.0 / static_cast<double>(width) - static_cast<double>(carried)) / p);
    }
}

void lastRow(const float *x, const float *y, int32_t n, float ypn, const float *u, float *y2)
{
    float qn = 0.0f;
    float un = 0.0f;
    if (!isNatural(ypn)) {
        const float h = x[n - 1] - x[n - 2];
        const float s = (y[n - 1] - y[n - 2]) / h;
        qn = 0.5f;
        un = clampedEnd(ypn - s, h);
    }
    const float numerator = un - qn * u[n - 2];
    const float correction = qn * y2[n - 2];
    y2[n - 1] = static_cast<float>(static_cast<double>(numerator) / (1.0 + static_cast<double>(correction)));
}

} // namespace
} // namespace orva

void ORVASPLINE_Estimate(const float *x, const float *y, int32_t n, float yp1, float ypn, float *y2)
{
    if (n < 2) {
        KTDEBUG_Log(-1, "ORVASPLINE_Estimate: Spline estimation must have 2 or more points");
        return;
    }
    // One byte short of n floats, and enough for the n - 1 that are used.
    const Owned<float> work(static_cast<float *>(std::malloc(4 * static_cast<size_t>(n) - 1)));
    float *u = work.get();
    if (u == nullptr)
        return;
    firstRow(x, y, yp1, u, y2);
    decompose(x, y, n, u, y2);
    lastRow(x, y, n, ypn, u, y2);
    for (int32_t k = n - 2; k >= 0; --k)
        y2[k] = y2[k] * y2[k + 1] + u[k];
}

float ORVASPLINE_Interpolate(const float *x, const float *y, const float *y2, int32_t n, float xq)
{
    if (n < 1)
        return std::numeric_limits<float>::quiet_NaN();
    return kernelsAt<InterpolateKernels, Level::plain>().spline(x, y, y2, n, xq);
}
