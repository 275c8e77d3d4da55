// The kernels of the windows: each level against the plain form bit by bit.
#include "window/kernels/ORVAwindow_kernels.h"

#include "support/bits.h"
#include "support/levels.h"
#include "support/random.h"
#include "window/definitions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace orva;
using support::sameBits;

namespace
{

constexpr float mark = 12345.0f;

const WindowKernels &plainKernels()
{
    return kernelsAt<WindowKernels>(Level::plain);
}

CosineSum sumOf(const std::vector<double> &terms)
{
    CosineSum sum = {static_cast<int32_t>(terms.size()), {}};
    std::copy(terms.begin(), terms.end(), sum.a);
    return sum;
}

std::vector<float> filled(const WindowKernels &kernels, const CosineSum &sum, double step, uint32_t count,
                          size_t offset)
{
    std::vector<float> w(count + offset + 32, mark);
    kernels.fill(sum, step, w.data() + offset, count);
    return w;
}

} // namespace

TEST(WindowKernels, PlainFillIsTheSumOfCosinesAtAnAccumulatedPhase)
{
    for (const auto &definition : definitions) {
        if (definition.terms.empty())
            continue;
        const uint32_t count = 1000;
        const double step = 6.283185307179586 / count;
        const auto w = filled(plainKernels(), sumOf(definition.terms), step, count, 0);
        double p = 0.0;
        for (uint32_t i = 0; i < count; ++i, p = p + step)
            ASSERT_EQ(w[i], static_cast<float>(cosineSum(definition.terms, p)))
                << definition.name << ", " << i;
    }
}

TEST(WindowKernels, FillHasTheBitsOfThePlainFormAtEverySizeAndAlignment)
{
    support::Random random;
    for (const Level level : support::fasterLevels())
        for (const auto &definition : definitions)
            for (uint32_t count = 0; count <= 300 && !definition.terms.empty(); ++count) {
                const CosineSum sum = sumOf(definition.terms);
                const double step = random.real(0.0, 6.283185307179586 / std::max(count, 1u));
                const auto offset = static_cast<size_t>(random.integer(0, 15));
                ASSERT_TRUE(sameBits(filled(kernelsAt<WindowKernels>(level), sum, step, count, offset),
                                     filled(plainKernels(), sum, step, count, offset)))
                    << definition.name << " at " << nameOf(level) << ", count " << count << ", step " << step;
            }
}

// Long ones, in which there are samples that the margin does not settle.
TEST(WindowKernels, FillHasThemInLongWindowsOfAnyFactors)
{
    support::Random random;
    for (const Level level : support::fasterLevels())
        for (int round = 0; round < 8; ++round) {
            CosineSum sum = {2 + round % 4, {}};
            for (double &a : sum.a)
                a = random.real(-2.0, 2.0);
            const auto count = static_cast<uint32_t>(random.integer(50000, 100000));
            const double step = 6.283185307179586 / count;
            ASSERT_TRUE(sameBits(filled(kernelsAt<WindowKernels>(level), sum, step, count, 0),
                                 filled(plainKernels(), sum, step, count, 0)))
                << nameOf(level) << ", " << count << " samples, " << sum.count << " terms";
        }
}

TEST(WindowKernels, ApplyHasTheBitsOfThePlainFormAtEverySizeAlignmentAndOverlap)
{
    support::Random random;
    for (const Level level : support::fasterLevels())
        for (int32_t length = -1; length <= 300; ++length) {
            const auto room = random.mixed(1000);
            const auto data = random.integer(330, 380);
            const auto window = length % 3 == 0 ? random.integer(0, 15) : data + random.integer(-40, 40);
            const auto run = [&](const WindowKernels &kernels) {
                auto values = room;
                kernels.apply(values.data() + window, values.data() + data, length);
                return values;
            };
            ASSERT_TRUE(sameBits(run(kernelsAt<WindowKernels>(level)), run(plainKernels())))
                << nameOf(level) << ", length " << length << ", window at " << window - data
                << " from the data";
        }
}
