// Which frames run: the counts at their limits.
#include "filter/ORVAfilter_reference.h"
#include "support/bits.h"

#include <orva/ORVAfilter.h>

#include <cstdlib>

using support::sameBits;

namespace
{

// Both structures, each doubling its input without any memory of it.
std::vector<Filter> doublers(size_t channels)
{
    std::vector<Filter> filters;
    filters.push_back(fromCoefs(channels, {2.0, 0.0}, {1.0}));
    filters.push_back(fromRecords(channels, {0.0, 0.0, 2.0, 0.0, 0.0}));
    return filters;
}

struct Case {
    const char *title;
    size_t channels;
    uint32_t numSamples;
    uint32_t offset;
    uint32_t stride;
    std::vector<size_t> written; // positions of the output, of 12
};

const Case cases[] = {
    {"nothing in the buffer", 1, 0, 0, 1, {}},
    {"less than a frame", 3, 2, 0, 3, {}},
    {"exactly a frame", 3, 3, 0, 3, {0, 1, 2}},
    {"a last partial frame", 3, 8, 0, 3, {0, 1, 2, 3, 4, 5}},
    {"an offset at the last frame", 3, 12, 9, 3, {9, 10, 11}},
    {"an offset beyond the last frame", 3, 12, 10, 3, {}},
    {"an offset beyond the buffer", 1, 12, 13, 1, {}},
    {"gaps between frames", 2, 12, 1, 5, {1, 2, 6, 7}},
    {"a last frame that ends the buffer", 2, 12, 0, 5, {0, 1, 5, 6, 10, 11}},
    {"a last frame that would end after it", 2, 11, 0, 5, {0, 1, 5, 6}},
    {"a second start of 2^31 - 1", 1, 12, 0, 0x7fffffffu, {0}},
    {"a second start of 2^31", 1, 12, 0, 0x80000000u, {0}},
    {"a second start of 2^31 from an offset", 2, 12, 4, 0x7ffffffcu, {4, 5}},
    {"a second start that wraps to 2", 1, 12, 3, 0xffffffffu, {3}},
    {"an offset of 2^31", 1, 12, 0x80000000u, 1, {}},
    {"an offset that is -1 as a signed number", 1, 12, 0xffffffffu, 1, {}},
    {"a last start above the signed numbers", 1, 0x80000001u, 0, 1, {}},
    {"the same, with two channels", 2, 0x80000002u, 0, 2, {}},
    {"as many floats as can be counted", 1, 0xffffffffu, 0, 1, {}},
};

} // namespace

TEST(FilterLimits, OnlyWholeFramesRunAndNothingElseIsWritten)
{
    for (const Case &c : cases)
        for (const Filter &filter : doublers(c.channels)) {
            const std::vector<float> input(12, 1.0f);
            std::vector<float> output(12, 0.5f), expected(12, 0.5f);
            for (size_t at : c.written)
                expected[at] = 2.0f;
            EXPECT_EQ(
                ORVA_FilterEx(filter.get(), input.data(), output.data(), c.numSamples, c.offset, c.stride), 1)
                << c.title;
            EXPECT_TRUE(sameBits(output, expected)) << c.title;
        }
}

TEST(FilterLimits, ARunWithoutAFrameLeavesTheMemories)
{
    const std::vector<float> input = {1.0f, 1.0f, 1.0f};
    for (const bool direct : {true, false}) {
        const Filter delay =
            direct ? fromCoefs(1, {0.0, 1.0}, {1.0}) : fromRecords(1, {0.0, 0.0, 0.0, 1.0, 0.0});
        float x = 7.0f;
        ASSERT_EQ(ORVA_Filter(delay.get(), &x, &x, 1), 1);
        float unused[3];
        ASSERT_EQ(ORVA_Filter(delay.get(), input.data(), unused, 0), 1);
        ASSERT_EQ(ORVA_FilterEx(delay.get(), input.data(), unused, 3, 3, 1), 1);
        ASSERT_EQ(ORVA_Filter(delay.get(), &x, &x, 1), 1);
        EXPECT_EQ(x, 7.0f);
    }
}
