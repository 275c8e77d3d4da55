// What comes of a converter for which memory runs out. Test programs run with malloc's own caches off, so
// that what is in use can be counted.
#include "ORVAresample_reference.h"
#include "support/bits.h"
#include "support/interposer.h"
#include "support/log.h"
#include "support/random.h"

#include <cstdlib>

#include <malloc.h>

namespace
{

using support::sameBits;

const support::Message invalidParameters = support::error("ORVA_ResampleInit: Parametros invalidos");

struct Case {
    const char *title;
    Rates rates;
    const char *config;
    uint64_t allocations;
    size_t messages; // of a construction that succeeds
};

const Case cases[] = {
    {"polyphase", {44100, 48000}, "order=4", 5, 0}, // handle, record, prototype, bank, delay line
    {"hold", {44100, 48000}, "type=zoh", 3, 0},     // handle, record, states
    {"hold without a filter", {44100, 44100}, "type=zoh", 3, 1},
    {"polyphase without a converter", {44100, 48000}, "order=0", 1, 1},
};

} // namespace

TEST(ResampleHeap, AConstructorThatRunsOutOfMemoryAnywhereGivesNullAndGivesAllBack)
{
    ASSERT_NE(std::getenv("GLIBC_TUNABLES"), nullptr) << "to be run by ctest, which sets it";
    for (const Case &c : cases) {
        uint64_t n = 1;
        for (;; ++n) {
            support::Log log;
            log.messages.reserve(2);
            const size_t before = mallinfo2().uordblks;
            support::failAllocation(n);
            ORVA_RESAMPLER *resampler = ORVA_ResampleInit(c.rates.input, c.rates.output, c.config);
            if (!support::endFailure()) {
                EXPECT_EQ(log.messages.size(), c.messages) << c.title;
                EXPECT_EQ(ORVA_ResampleDestroy(resampler), 1);
                break;
            }
            EXPECT_EQ(resampler, nullptr) << c.title << ", " << n;
            ASSERT_FALSE(log.messages.empty());
            EXPECT_EQ(log.messages.back(), invalidParameters) << c.title << ", " << n;
            EXPECT_LE(log.messages.size(), 1 + c.messages) << c.title << ", " << n;
            log.messages = {};
            EXPECT_EQ(mallinfo2().uordblks, before) << c.title << ", " << n;
        }
        EXPECT_EQ(n, c.allocations + 1) << c.title;
    }
}

TEST(ResampleHeap, AConverterGivesAllBackWhenItIsDestroyed)
{
    ASSERT_NE(std::getenv("GLIBC_TUNABLES"), nullptr) << "to be run by ctest, which sets it";
    support::Log log;
    log.messages.reserve(10);
    const Floats input(500, 0.5f);
    Floats output(1000);
    for (const Case &c : cases) {
        const size_t before = mallinfo2().uordblks;
        ORVA_RESAMPLER *resampler = ORVA_ResampleInit(c.rates.input, c.rates.output, c.config);
        for (const int32_t count : {10, 500, 3})
            ORVA_Resample(resampler, input.data(), output.data(), count);
        ORVA_ResampleFlushBuffersEx(resampler, output.data(), 0);
        EXPECT_EQ(ORVA_ResampleDestroy(resampler), 1);
        log.messages.clear();
        EXPECT_EQ(mallinfo2().uordblks, before) << c.title;
    }
}

TEST(ResampleHeap, ABlockThatRunsOutOfMemoryIsRefusedAndChangesNothing)
{
    support::Random random;
    const auto input = random.noise(300);
    Floats output(700, unwritten);
    for (const char *config : {"order=4", "type=zoh"})
        for (const Rates rates : {Rates{44100, 48000}, {48000, 44100}}) {
            const auto resampler = newResampler(rates, config), untouched = newResampler(rates, config);
            for (const size_t count : {100, 200, 300}) {
                support::Log log;
                support::failAllocation(1);
                EXPECT_EQ(
                    ORVA_Resample(resampler.get(), input.data(), output.data(), static_cast<int32_t>(count)),
                    -1);
                EXPECT_TRUE(support::endFailure());
                EXPECT_EQ(log.messages, std::vector{invalidParameters});
                EXPECT_EQ(output[0], unwritten);
                for (const size_t again : {count, count / 2})
                    EXPECT_TRUE(sameBits(convert(resampler.get(), std::span(input).first(again), 400),
                                         convert(untouched.get(), std::span(input).first(again), 400)))
                        << config << ", " << rates << ", " << count;
            }
            EXPECT_TRUE(sameBits(flush(resampler.get(), 0), flush(untouched.get(), 0)));
        }
}

// A polyphase converter has room from the start for a block as long as its delay line.
TEST(ResampleHeap, OnlyABlockLongerThanAnyBeforeAllocates)
{
    Floats input(300, 0.5f), output(700);
    for (const auto &[config, first] : {std::pair{"order=4", 0u}, {"type=zoh", 1u}}) {
        const auto resampler = newResampler({44100, 48000}, config);
        const auto heapCalls = [&](int32_t count) {
            support::begin();
            ORVA_Resample(resampler.get(), input.data(), output.data(), count);
            return support::end().heap;
        };
        EXPECT_EQ(heapCalls(0), 0u);
        EXPECT_EQ(heapCalls(1), first) << config;
        EXPECT_EQ(heapCalls(1), 0u) << config;
        EXPECT_EQ(heapCalls(200), 1u) << config;
        for (const int32_t count : {200, 199, 1, 0, 200})
            EXPECT_EQ(heapCalls(count), 0u) << config;
        EXPECT_EQ(heapCalls(300), 1u) << config;
    }
}
