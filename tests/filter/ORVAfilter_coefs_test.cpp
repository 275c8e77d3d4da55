// The constructors: what they store, refuse and accept.
#include "filter/ORVAfilter_internal.h"
#include "filter/ORVAfilter_reference.h"
#include "support/bits.h"
#include "support/log.h"

#include <cmath>
#include <limits>

using namespace orva;

using support::error;
using support::Log;
using support::Message;
using support::Random;
using support::sameBits;

// A size that cannot be had is refused here as it is without a sanitizer.
extern "C" const char *__asan_default_options();
extern "C" const char *__asan_default_options()
{
    return "allocator_may_return_null=1";
}
extern "C" const char *__tsan_default_options();
extern "C" const char *__tsan_default_options()
{
    return "allocator_may_return_null=1";
}

namespace
{

constexpr uint32_t tooLarge = 2147483648u;

_DFIIstate *direct(const Filter &filter)
{
    return static_cast<_DFIIstate *>(filter->state);
}

_DFIISOSstate *biquads(const Filter &filter)
{
    return static_cast<_DFIISOSstate *>(filter->state);
}

} // namespace

TEST(FilterFromCoefs, StoresTheQuotientsByTheLeadingDenominator)
{
    const Filter filter = fromCoefs(3, {2.0, 4.0}, {2.0, 1.0});
    const auto *state = direct(filter);
    EXPECT_EQ(state->gain, 1.0f);
    EXPECT_EQ(state->numerator[0], 2.0f);
    EXPECT_EQ(state->denominator[0], 0.5f);
    EXPECT_EQ(state->order, 1);
    EXPECT_EQ(state->numOrder, 1);
    EXPECT_EQ(state->denOrder, 1);
    EXPECT_EQ(state->position, 0);
    EXPECT_EQ(filter->numChannels, 3);
    EXPECT_EQ(filter->kind, 0);
    EXPECT_EQ(filter->filterFn, _DFIIfilter);
    EXPECT_EQ(filter->resetFn, _DFIIreset);
    EXPECT_EQ(filter->copyMemFn, _DFIIcopyMem);
    EXPECT_TRUE(sameBits(std::vector<float>(state->memory, state->memory + 6), std::vector<float>(6)));
}

TEST(FilterFromCoefs, OneElementEachIsAPureGain)
{
    const Filter filter = fromCoefs(1, {3.0}, {4.0});
    EXPECT_EQ(direct(filter)->order, 0);
    EXPECT_EQ(direct(filter)->numOrder, 0);
    EXPECT_EQ(direct(filter)->denOrder, 0);
    EXPECT_EQ(direct(filter)->gain, 0.75f);
    EXPECT_EQ(direct(filter)->memory[0], 0.0f);
}

TEST(FilterFromCoefs, TheLongerSideGivesTheOrder)
{
    for (size_t numCount = 1; numCount <= 13; ++numCount)
        for (size_t denCount = 1; denCount <= 13; ++denCount) {
            const Filter filter =
                fromCoefs(2, std::vector<double>(numCount, 1.0), std::vector<double>(denCount, 1.0));
            EXPECT_EQ(direct(filter)->numOrder, static_cast<int32_t>(numCount) - 1);
            EXPECT_EQ(direct(filter)->denOrder, static_cast<int32_t>(denCount) - 1);
            EXPECT_EQ(direct(filter)->order, static_cast<int32_t>(std::max(numCount, denCount)) - 1);
        }
}

TEST(FilterFromCoefs, RoundsOnceAfterADivisionInDouble)
{
    Random random;
    const auto b = randomNumerator(random, 500);
    const auto a = randomDenominator(random, 400);
    const Filter filter = fromCoefs(1, b, a);
    const auto *state = direct(filter);
    size_t roundedTwiceDiffers = 0;
    EXPECT_TRUE(sameBits(state->gain, static_cast<float>(b[0] / a[0])));
    for (size_t k = 0; k < 499; ++k) {
        ASSERT_TRUE(sameBits(state->numerator[k], static_cast<float>(b[k + 1] / a[0]))) << k;
        roundedTwiceDiffers += state->numerator[k] != static_cast<float>(b[k + 1]) / static_cast<float>(a[0]);
    }
    for (size_t k = 0; k < 399; ++k)
        ASSERT_TRUE(sameBits(state->denominator[k], static_cast<float>(a[k + 1] / a[0]))) << k;
    EXPECT_GT(roundedTwiceDiffers, 0u) << "the values tell the two apart";
}

TEST(FilterFromCoefs, AZeroLeadingDenominatorMakesAFilterOfInfinities)
{
    const Log log;
    const Filter filter = fromCoefs(1, {1.0, 0.0, -1.0}, {0.0, 2.0});
    ASSERT_NE(filter, nullptr);
    EXPECT_EQ(direct(filter)->gain, __builtin_inff());
    EXPECT_TRUE(std::isnan(direct(filter)->numerator[0]));
    EXPECT_EQ(direct(filter)->numerator[1], -__builtin_inff());
    EXPECT_EQ(direct(filter)->denominator[0], __builtin_inff());
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterFromCoefs, TheVectorsAreCopied)
{
    std::vector<double> b = {1.0, 1.0};
    std::vector<double> a = {1.0, -0.5};
    const Filter filter = fromCoefs(1, b, a);
    b.assign(2, 99.0);
    a.assign(2, 99.0);
    std::vector<float> x = {1.0f, 0.0f, 0.0f};
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), x.data(), 3), 1);
    EXPECT_TRUE(sameBits(x, {1.0f, 1.5f, 0.75f}));
}

TEST(FilterFromCoefs, RefusesInSilenceWhatCannotBeAFilter)
{
    const Log log;
    const double one[] = {1.0, 1.0};
    const struct {
        const char *title;
        uint32_t numChannels;
        int32_t numCount;
        const double *numerator;
        uint32_t denCount;
        const double *denominator;
    } cases[] = {
        {"no numerator", 1, 1, nullptr, 1, one},
        {"no denominator", 1, 1, one, 1, nullptr},
        {"neither", 1, 1, nullptr, 1, nullptr},
        {"a numerator of none", 1, 0, one, 1, one},
        {"a numerator of less than none", 1, -1, one, 1, one},
        {"the least count", 1, std::numeric_limits<int32_t>::min(), one, 1, one},
        {"a denominator of none", 1, 1, one, 0, one},
        {"a denominator count of 2^31", 1, 1, one, tooLarge, one},
        {"the largest denominator count", 1, 1, one, 0xffffffffu, one},
        {"2^31 channels", tooLarge, 1, one, 1, one},
        {"the most channels", 0xffffffffu, 1, one, 1, one},
    };
    for (const auto &c : cases)
        EXPECT_EQ(
            ORVA_CreateFilterFromCoefs(c.numChannels, c.numCount, c.numerator, c.denCount, c.denominator),
            nullptr)
            << c.title;
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterFromCoefs, RefusesASizeThatCannotBeHad)
{
    const Log log;
    const std::vector<double> ones(1 << 20, 1.0);
    EXPECT_EQ(ORVA_CreateFilterFromCoefs(2147483647, 1 << 20, ones.data(), 1, ones.data()), nullptr);
    EXPECT_EQ(ORVA_CreateFilterFromCoefs(2147483647, 1, ones.data(), 1 << 20, ones.data()), nullptr);
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterFromCoefs, TakesZeroChannels)
{
    const Filter filter = fromCoefs(0, {1.0, 2.0}, {1.0});
    ASSERT_NE(filter, nullptr);
    EXPECT_EQ(filter->numChannels, 0);
    EXPECT_EQ(ORVA_ResetFilter(filter.get()), 1);
}

TEST(FilterFromBiquads, StoresTheRecordsAsTheyAre)
{
    Random random;
    std::vector<double> records = randomRecords(random, 7);
    records[3] = __builtin_inf();
    records[11] = __builtin_nan("");
    records[17] = 0x1p-1074;
    const Filter filter = fromRecords(2, records);
    const auto *state = biquads(filter);
    EXPECT_TRUE(sameBits(std::vector<double>(state->coefs, state->coefs + 35), records));
    EXPECT_EQ(state->allocatedBiquads, 7);
    EXPECT_EQ(state->numBiquads, 7);
    EXPECT_EQ(state->position, 0);
    EXPECT_EQ(filter->numChannels, 2);
    EXPECT_EQ(filter->kind, 0);
    EXPECT_EQ(filter->filterFn, _DFIISOSfilter);
    EXPECT_EQ(filter->resetFn, _DFIISOSreset);
    EXPECT_EQ(filter->copyMemFn, _DFIISOScopyMem);
    EXPECT_TRUE(sameBits(std::vector<double>(state->memory, state->memory + 56), std::vector<double>(56)));
}

TEST(FilterFromBiquads, TheRecordsAreCopied)
{
    std::vector<double> records = {0.0, 0.0, 2.0, 0.0, 0.0};
    const Filter filter = fromRecords(1, records);
    records.assign(5, 99.0);
    float x = 1.0f;
    ASSERT_EQ(ORVA_Filter(filter.get(), &x, &x, 1), 1);
    EXPECT_EQ(x, 2.0f);
}

TEST(FilterFromBiquads, TakesUpTo65536Records)
{
    const std::vector<double> records(5 * 65537, 0.25);
    {
        const Log log;
        const Filter most(ORVA_CreateFilterFromBiquads(1, 65536, records.data()));
        ASSERT_NE(most, nullptr);
        EXPECT_EQ(biquads(most)->numBiquads, 65536);
        EXPECT_EQ(log.messages, std::vector<Message>{});
    }
    {
        const Log log;
        EXPECT_EQ(ORVA_CreateFilterFromBiquads(1, 65537, records.data()), nullptr);
        EXPECT_EQ(log.messages,
                  std::vector<Message>{error("ORVA_CreateFilterFromBiquads: Too many biquads (65537)\n")});
    }
    {
        const Log log;
        EXPECT_EQ(ORVA_CreateFilterFromBiquads(-1, 0xffffffffu, records.data()), nullptr);
        EXPECT_EQ(log.messages, std::vector<Message>{
                                    error("ORVA_CreateFilterFromBiquads: Too many biquads (4294967295)\n")});
    }
}

TEST(FilterFromBiquads, RefusesInSilenceNullRecordsNegativeChannelsAndASizeThatCannotBeHad)
{
    const Log log;
    const std::vector<double> records(5 * 65536, 0.25);
    EXPECT_EQ(ORVA_CreateFilterFromBiquads(1, 1, nullptr), nullptr);
    EXPECT_EQ(ORVA_CreateFilterFromBiquads(1, 0, nullptr), nullptr);
    EXPECT_EQ(ORVA_CreateFilterFromBiquads(1, 65537, nullptr), nullptr) << "null comes before the count";
    EXPECT_EQ(ORVA_CreateFilterFromBiquads(-1, 0, records.data()), nullptr);
    EXPECT_EQ(ORVA_CreateFilterFromBiquads(-1, 1, records.data()), nullptr);
    EXPECT_EQ(ORVA_CreateFilterFromBiquads(std::numeric_limits<int32_t>::min(), 1, records.data()), nullptr);
    EXPECT_EQ(ORVA_CreateFilterFromBiquads(2147483647, 65536, records.data()), nullptr);
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterFromBiquads, TakesZeroChannelsAndZeroRecords)
{
    const double records[] = {0.0, 0.0, 1.0, 0.0, 0.0};
    for (const int32_t channels : {0, 1, 9})
        for (const uint32_t count : {0u, 1u}) {
            const Filter filter(ORVA_CreateFilterFromBiquads(channels, count, records));
            ASSERT_NE(filter, nullptr);
            EXPECT_EQ(filter->numChannels, channels);
            EXPECT_EQ(biquads(filter)->numBiquads, static_cast<int32_t>(count));
            EXPECT_EQ(ORVA_ResetFilter(filter.get()), 1);
        }
}
