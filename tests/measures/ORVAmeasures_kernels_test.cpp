// The kernel of the measures: each level against the plain form.
#include "measures/kernels/ORVAmeasures_kernels.h"

#include "support/levels.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <vector>

using namespace orva;

TEST(MeasuresKernels, CountAsThePlainFormDoesAtEverySizeAndAlignment)
{
    support::Random random;
    const MeasuresKernels &plain = kernelsAt<MeasuresKernels>(Level::plain);
    for (const Level level : support::fasterLevels())
        for (int32_t length = 0; length <= 300; ++length) {
            const auto offset = static_cast<size_t>(random.integer(0, 15));
            const auto samples = random.mixed(static_cast<size_t>(length) + offset + 1);
            EXPECT_EQ(kernelsAt<MeasuresKernels>(level).crossings(samples.data() + offset, length),
                      plain.crossings(samples.data() + offset, length))
                << nameOf(level) << ", length " << length;
        }
}

TEST(MeasuresKernels, CountEveryPairOfAnAlternatingFrame)
{
    std::vector<float> samples(100003);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = i % 2 == 0 ? 1.0f : -1.0f;
    for (const Level level : allLevels) {
        if (isAvailable(level)) {
            EXPECT_EQ(kernelsAt<MeasuresKernels>(level).crossings(samples.data(), 100003), 100002)
                << nameOf(level);
        }
    }
}
