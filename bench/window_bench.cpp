// The window generators beside the textbook formula with one cosine a term and sample, and what is done with a window
// beside its plain loop, and beside a copy of as many bytes. Times are for a sample of the window.
#include "cases.h"

#include <orva/ORVAwinfnc.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{

constexpr size_t length = 4096;

// A sum of cosines, a[0] - a[1] cos p + a[2] cos 2p ..., or a line where there are none.
struct Shape {
    int32_t type;
    std::vector<double> a;
};

void plainWindow(const std::vector<double> &a, std::vector<float> &window)
{
    const auto last = static_cast<double>(window.size() - 1);
    for (size_t i = 0; i < window.size(); ++i) {
        const double n = static_cast<double>(i);
        double sum = a.empty() ? 1.0 - std::abs(2.0 * n / last - 1.0) : a[0];
        for (size_t k = 1; k < a.size(); ++k)
            sum += (k % 2 != 0 ? -a[k] : a[k]) *
                   std::cos(2.0 * std::numbers::pi * static_cast<double>(k) * n / last);
        window[i] = static_cast<float>(sum);
    }
}

void addShape(const Shape &shape)
{
    const std::string name = ORVA_GetWindowName(shape.type);
    addLevels(name, length, [type = shape.type] {
        return [type, window = std::vector<float>(length)]() mutable {
            ORVA_CreateWindow(type, window.data(), length);
        };
    });
    addCase(name + "/plain", length, [a = shape.a] {
        return [a, window = std::vector<float>(length)]() mutable { plainWindow(a, window); };
    });
}

void addUses()
{
    const std::vector<float> ones(length, 1.0f); // whatever else would make the data ever smaller
    addLevels("apply", length, [=] {
        return [window = ones, data = noise(length)]() mutable {
            ORVA_ApplyWindow(window.data(), data.data(), length);
        };
    });
    addCase("apply/plain", length, [=] {
        return [window = ones, data = noise(length)]() mutable {
            for (size_t i = 0; i < length; ++i)
                data[i] *= window[i];
        };
    });
    addCopy("apply/copy", length, length);
    addCase("mean/orva", length, [] {
        return [window = noise(length)] {
            benchmark::DoNotOptimize(ORVA_GetWindowNormFactor(window.data(), length));
        };
    });
    addCase("mean/plain", length, [] {
        return [window = noise(length)] {
            double sum = 0.0;
            for (const float x : window)
                sum += x;
            benchmark::DoNotOptimize(sum / length);
        };
    });
}

const bool registered = [] {
    const Shape shapes[] = {{0, {1}},
                            {1, {}},
                            {3, {0.5, 0.5}},
                            {4, {0.5, 0.5}},
                            {5, {0.54, 0.46}},
                            {6, {0.42, 0.5, 0.08}},
                            {7, {0.35875, 0.48829, 0.14128, 0.01168}},
                            {10, {1, 1.93, 1.29, 0.388, 0.028}}};
    for (const Shape &shape : shapes)
        addShape(shape);
    addUses();
    return true;
}();

} // namespace
