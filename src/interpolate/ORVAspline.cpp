#include <orva/ORVAspline.h>

#include "common/memory.h"
#include "interpolate/ORVAinterpolate_interval.h"

#include <kett/KTdebug.h>

#include <bit>
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

// What a row of the forward sweep hands on to the next.
struct Row {
    float y2;
    float u;
    float slope; // from its point to the next one
};

float slopeAfter(const float *x, const float *y, int32_t i)
{
    return (y[i + 1] - y[i]) / (x[i + 1] - x[i]);
}

// Row i of the tridiagonal system; s[i] is the slope after point i:
//     sig = (x[i] - x[i-1]) / (x[i+1] - x[i-1])
//     p = sig y2[i-1] + 2
//     y2[i] = (sig - 1) / p
//     u[i] = (6 (s[i] - s[i-1]) / (x[i+1] - x[i-1]) - sig u[i-1]) / p
Row rowAfter(Row before, const float *x, const float *y, int32_t i)
{
    const float width = x[i + 1] - x[i - 1];
    const float sig = (x[i] - x[i - 1]) / width;
    const float pRounded = sig * before.y2 + 2.0f;
    const double p = static_cast<double>(pRounded);
    const float slope = slopeAfter(x, y, i);
    const float e = slope - before.slope;
    const float carried = sig * before.u;
    const double right = static_cast<double>(e) * 6.0 / static_cast<double>(width);
    return {.y2 = static_cast<float>((static_cast<double>(sig) - 1.0) / p),
            .u = static_cast<float>((right - static_cast<double>(carried)) / p),
            .slope = slope};
}

bool sameBits(float a, float b)
{
    return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b);
}

// Forward sweep, one row for each inner point. A row waits for the one before, mostly for its division; so a long table
// is swept in two halves at a time, the second one from an assumed beginning. What a row depends on the one before by
// shrinks at each, so that some rows into the second half the true ones are, to the bit, those of the assumption.
void decompose(const float *x, const float *y, int32_t n, float *u, float *y2)
{
    const auto keep = [=](int32_t i, Row row) {
        y2[i] = row.y2;
        u[i] = row.u;
    };
    constexpr int32_t longTable = 100;
    const int32_t end = n - 1;
    const int32_t middle = n >= longTable ? n / 2 : end;
    Row row = {y2[0], u[0], slopeAfter(x, y, 0)};
    Row assumed = {-0.25f, 0.0f, slopeAfter(x, y, middle - 1)};
    int32_t second = middle;
    for (int32_t i = 1; i < middle; ++i) {
        row = rowAfter(row, x, y, i);
        keep(i, row);
        if (second < end) {
            assumed = rowAfter(assumed, x, y, second);
            keep(second++, assumed);
        }
    }
    for (; second < end; ++second) {
        assumed = rowAfter(assumed, x, y, second);
        keep(second, assumed);
    }
    for (int32_t i = middle; i < end; ++i) {
        row = rowAfter(row, x, y, i);
        if (sameBits(row.y2, y2[i]) && sameBits(row.u, u[i]))
            return;
        keep(i, row);
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

// h = x1 - x0,  a = (x1 - xq) / h,  b = (xq - x0) / h
// y = ((a^3 - a) y0'' + (b^3 - b) y1'') h^2 / 6 + a y0 + b y1
float ORVASPLINE_Interpolate(const float *x, const float *y, const float *y2, int32_t n, float xq)
{
    if (n < 1)
        return std::numeric_limits<float>::quiet_NaN();
    const auto [lo, hi] = intervalOf(x, n, xq);
    const float h = x[hi] - x[lo];
    const float a = (x[hi] - xq) / h;
    const float b = (xq - x[lo]) / h;
    const float c = ((a * a * a - a) * y2[lo] + (b * b * b - b) * y2[hi]) * (h * h);
    const float l = a * y[lo] + b * y[hi];
    return static_cast<float>(static_cast<double>(c) / 6.0 + static_cast<double>(l));
}
