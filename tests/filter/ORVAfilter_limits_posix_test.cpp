// Which frames run: a buffer of as many bytes as can be addressed, and what never returns; a text without characters.
#include "filter/ORVAfilter_reference.h"
#include "support/log.h"

#include <orva/ORVAfilter.h>

#include <csignal>
#include <cstdlib>

#include <sys/mman.h>
#include <sys/time.h>

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

// Ends the process by SIGVTALRM once it has computed for 20 ms.
void computeNoLongerThan20ms()
{
    const itimerval timer = {.it_interval = {.tv_sec = 0, .tv_usec = 0},
                             .it_value = {.tv_sec = 0, .tv_usec = 20000}};
    setitimer(ITIMER_VIRTUAL, &timer, nullptr);
}

} // namespace

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

TEST(CreateFilter, RefusesATextThatCannotBeHadInSilence)
{
    const support::Log log;
    EXPECT_EQ(ORVA_CreateFilter(nullptr), nullptr);
    const wchar_t unknown[] = {static_cast<wchar_t>(0x7fffffff), 0};
    EXPECT_EQ(ORVA_CreateFilter("%ls order=2 fpass=0.5", unknown), nullptr);
    EXPECT_EQ(log.messages, std::vector<support::Message>{});
}
