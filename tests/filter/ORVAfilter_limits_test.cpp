// Which frames run: the counts at their limits.
#include "filter/ORVAfilter_reference.h"
#include "support/bits.h"

#include <orva/ORVAfilter.h>

#include <csignal>
#include <cstdlib>

#include <sys/mman.h>
#include <sys/time.h>

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

// Ends the process by SIGVTALRM once it has computed for 20 ms.
void computeNoLongerThan20ms()
{
    const itimerval timer = {.it_interval = {.tv_sec = 0, .tv_usec = 0},
                             .it_value = {.tv_sec = 0, .tv_usec = 20000}};
    setitimer(ITIMER_VIRTUAL, &timer, nullptr);
}

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

TEST(FilterLimits, ABufferMayEndAtTheLastSignedPosition)
{
    const size_t floats = size_t{1} << 31;
    void *pages = mmap(nullptr, floats * sizeof(float), PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    auto *samples = static_cast<float *>(pages);
    for (const Filter &filter : doublers(1)) {
        samples[0] = 1.0f;
        samples[floats - 1] = 3.0f;
        EXPECT_EQ(ORVA_FilterEx(filter.get(), samples, samples, 0x80000000u, 0, 0x7fffffffu), 1);
        EXPECT_EQ(samples[0], 2.0f);
        EXPECT_EQ(samples[floats - 1], 6.0f);
    }
    munmap(pages, floats * sizeof(float));
}

TEST(FilterLimitsDeathTest, AStrideOfZeroNeverReturns)
{
    for (const Filter &filter : doublers(1)) {
        const float input = 1.0f;
        float output = 0.0f;
        EXPECT_EXIT(
            {
                computeNoLongerThan20ms();
                ORVA_FilterEx(filter.get(), &input, &output, 1, 0, 0);
                std::_Exit(0);
            },
            testing::KilledBySignal(SIGVTALRM), "");
        EXPECT_EQ(ORVA_FilterEx(filter.get(), &input, &output, 1, 1, 0), 1) << "no frame fits at the offset";
    }
}

TEST(FilterLimitsDeathTest, AFilterWithoutChannelsNeverReturns)
{
    for (const Filter &filter : doublers(0)) {
        const float input = 1.0f;
        float output = 0.0f;
        EXPECT_EXIT(
            {
                computeNoLongerThan20ms();
                ORVA_Filter(filter.get(), &input, &output, 0);
                std::_Exit(0);
            },
            testing::KilledBySignal(SIGVTALRM), "");
        EXPECT_EQ(ORVA_Filter(filter.get(), &input, &output, 0x80000000u), 1);
        EXPECT_EQ(ORVA_FilterEx(filter.get(), &input, &output, 5, 0, 1), 1) << "frames of no floats";
    }
}
