// The kernels of the correlation: each level against the plain form bit by bit.
#include "xcorr/kernels/ORVAxcorr_kernels.h"

#include "support/bits.h"
#include "support/levels.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace orva;
using support::sameBits;

namespace
{

ORVA_COMPLEX *binsAt(float *floats)
{
    return reinterpret_cast<ORVA_COMPLEX *>(floats);
}

using Combine = void (*XcorrKernels::*)(const ORVA_COMPLEX *, const ORVA_COMPLEX *, ORVA_COMPLEX *, int32_t,
                                        float);

// Bins whose magnitudes go from those whose power is lost to those whose power is infinite.
std::vector<float> anyMagnitude(support::Random &random, size_t length)
{
    std::vector<float> values(length);
    for (auto &x : values)
        x = static_cast<float>(random.real(-1.0, 1.0) * std::exp2(random.real(-70.0, 66.0)));
    return values;
}

// Both forms of every level on `count` bins: into an array of their own, marked around them, and over either input.
void check(const std::vector<float> &x, const std::vector<float> &y, size_t offset, int32_t count,
           float factor)
{
    const XcorrKernels &plain = kernelsAt<XcorrKernels>(Level::plain);
    for (const Level level : support::fasterLevels())
        for (const Combine combine : {&XcorrKernels::combinePlain, &XcorrKernels::combinePhat})
            for (const int over : {0, 1, 2}) {
                const auto run = [&](const XcorrKernels &kernels) {
                    auto first = x, second = y;
                    std::vector<float> own(x.size() + 32, 12345.0f);
                    std::vector<float> &output = over == 0 ? own : over == 1 ? first : second;
                    (kernels.*combine)(binsAt(first.data() + offset), binsAt(second.data() + offset),
                                       binsAt(output.data() + offset), count, factor);
                    return output;
                };
                ASSERT_TRUE(sameBits(run(kernelsAt<XcorrKernels>(level)), run(plain)))
                    << nameOf(level) << (combine == &XcorrKernels::combinePhat ? ", phase transform, " : ", ")
                    << count << " bins, output " << over;
            }
}

} // namespace

TEST(XcorrKernels, HaveTheBitsOfThePlainFormAtEverySizeAndAlignment)
{
    support::Random random;
    for (int32_t count = 0; count <= 300; ++count) {
        const auto offset = static_cast<size_t>(random.integer(0, 15));
        const auto size = 2 * static_cast<size_t>(count) + offset;
        const auto factor = 1.0f / static_cast<float>(random.integer(1, 100000));
        check(random.noise(size), random.noise(size), offset, count, factor);
        check(random.mixed(size), random.mixed(size), offset, count, factor);
    }
}

TEST(XcorrKernels, HaveThemAtAnyMagnitude)
{
    support::Random random;
    for (int round = 0; round < 20; ++round)
        check(anyMagnitude(random, 2000), anyMagnitude(random, 2000), 0, 1000, 1.0f / 1998.0f);
}

// Where results are below the least normal number, a float is not as fine as elsewhere.
TEST(XcorrKernels, HaveThemWhereResultsAreSubnormal)
{
    support::Random random;
    for (int round = 0; round < 20; ++round) {
        auto x = random.noise(2000);
        for (size_t k = 1; k < x.size(); k += 2)
            x[k] *= static_cast<float>(std::exp2(random.real(-130.0, -110.0)));
        auto y = random.noise(2000);
        for (size_t k = 1; k < y.size(); k += 2)
            y[k] = 0.0f;
        check(x, y, 0, 1000, 1.0f / 4096.0f);
    }
}

TEST(XcorrKernels, LeaveSilenceAsItIs)
{
    const std::vector<float> zeros(200, 0.0f), negative(200, -0.0f), tiny(200, 1e-30f);
    for (const auto &x : {zeros, negative, tiny})
        for (const auto &y : {zeros, negative, tiny})
            check(x, y, 0, 100, 0.01f);
}
