// The hot loops of the windows.
#pragma once

#include "common/cpu.h"

#include <cstdint>

namespace orva
{

// a[0] + a[1] cos(p) + a[2] cos(2p) ..., the signs in the coefficients.
struct CosineSum {
    int32_t count; // of coefficients
    double a[5];
};

// The sum at phase p, each step in double, from left to right.
double cosineSumAt(const CosineSum &sum, double p);

struct WindowKernels {
    // data[i] = data[i] window[i], in index order where the two overlap.
    void (*apply)(const float *window, float *data, int32_t length);

    // w[i] is the sum at phase p[i], narrowed: p[0] = 0, p[i] = p[i-1] + step, up to 2 pi. The phase is accumulated, not
    // i step: the two differ in their last bits, and hosts compare them.
    void (*fill)(const CosineSum &sum, double step, float *w, uint32_t count);
};

template <> const WindowKernels &kernelsAt<WindowKernels, Level::plain>();

} // namespace orva
