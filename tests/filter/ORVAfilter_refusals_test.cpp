// Every refusal of the calls on a finished filter, with its message counted; some need a handle damaged from
// inside.
#include "filter/ORVAfilter_internal.h"
#include "filter/ORVAfilter_reference.h"
#include "support/bits.h"
#include "support/log.h"

#include <limits>

using namespace orva;

using support::error;
using support::Log;
using support::Message;
using support::sameBits;

namespace
{

Filter delayOfOne()
{
    return fromCoefs(1, {0.0, 1.0}, {1.0});
}

Filter section()
{
    return fromRecords(1, {-0.5, 0.25, 1.0, 2.0, 3.0});
}

std::vector<double> recordsOf(const Filter &filter)
{
    const auto *state = static_cast<const _DFIISOSstate *>(filter->state);
    return std::vector<double>(state->coefs, state->coefs + 5 * state->numBiquads);
}

const std::vector<double> others = {0.1, 0.2, 0.3, 0.4, 0.5};

} // namespace

TEST(FilterRefusals, ANullPointerRunsNothing)
{
    const Log log;
    for (const bool isDirect : {true, false}) {
        const Filter filter = isDirect ? delayOfOne() : section();
        const float input = 1.0f;
        float output = 0.5f;
        EXPECT_EQ(ORVA_Filter(nullptr, &input, &output, 1), 0);
        EXPECT_EQ(ORVA_Filter(filter.get(), nullptr, &output, 1), 0);
        EXPECT_EQ(ORVA_Filter(filter.get(), &input, nullptr, 1), 0);
        EXPECT_EQ(ORVA_FilterEx(nullptr, &input, &output, 1, 0, 1), 0);
        EXPECT_EQ(ORVA_FilterEx(filter.get(), nullptr, &output, 1, 0, 1), 0);
        EXPECT_EQ(ORVA_FilterEx(filter.get(), &input, nullptr, 1, 0, 1), 0);
        EXPECT_EQ(ORVA_Filter(filter.get(), nullptr, nullptr, 0), 0)
            << "not even when there is nothing to do";
        EXPECT_EQ(output, 0.5f);
        float silence[2] = {};
        ASSERT_EQ(ORVA_Filter(filter.get(), silence, silence, 2), 1);
        EXPECT_TRUE(sameBits<float>(silence, std::vector<float>{0.0f, 0.0f}))
            << "the memories are as they were";
    }
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterRefusals, ResetAndDestroyOfNothingGiveZero)
{
    const Log log;
    EXPECT_EQ(ORVA_ResetFilter(nullptr), 0);
    EXPECT_EQ(ORVA_DestroyFilter(nullptr), 0);
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterRefusals, MemoriesAreCopiedOnlyBetweenLikeFilters)
{
    const Log log;
    const Filter direct = delayOfOne();
    const Filter cascade = section();
    const Filter stereoDirect = fromCoefs(2, {0.0, 1.0}, {1.0});
    const Filter stereoCascade = fromRecords(2, recordsOf(cascade));
    const Filter bandPass = section();
    bandPass->kind = 2;
    const Filter lowPass = section();
    lowPass->kind = 0;

    std::vector<float> x = {1.0f, 2.0f, 3.0f, 4.0f};
    for (const Filter *filter : {&direct, &cascade, &stereoDirect, &stereoCascade, &bandPass, &lowPass}) {
        auto y = x;
        ASSERT_EQ(ORVA_Filter(filter->get(), y.data(), y.data(), 4), 1);
    }
    auto *ring = static_cast<_DFIIstate *>(direct->state);
    auto *slots = static_cast<_DFIISOSstate *>(cascade->state);
    const std::vector<float> ringBefore(ring->memory, ring->memory + 2);
    const std::vector<double> slotsBefore(slots->memory, slots->memory + 4);
    // A destination that a copy would change is told apart by its position, too.
    const int32_t ringPosition = ring->position = 0;
    const int32_t slotsPosition = slots->position = 1;

    EXPECT_EQ(ORVA_CopyFilterMemories(nullptr, direct.get()), 0);
    EXPECT_EQ(ORVA_CopyFilterMemories(direct.get(), nullptr), 0);
    EXPECT_EQ(ORVA_CopyFilterMemories(nullptr, nullptr), 0);
    EXPECT_EQ(ORVA_CopyFilterMemories(direct.get(), cascade.get()), 0);
    EXPECT_EQ(ORVA_CopyFilterMemories(cascade.get(), direct.get()), 0);
    EXPECT_EQ(ORVA_CopyFilterMemories(direct.get(), stereoDirect.get()), 0);
    EXPECT_EQ(ORVA_CopyFilterMemories(cascade.get(), stereoCascade.get()), 0);
    EXPECT_EQ(ORVA_CopyFilterMemories(cascade.get(), bandPass.get()), 0);
    EXPECT_TRUE(sameBits(std::vector<float>(ring->memory, ring->memory + 2), ringBefore));
    EXPECT_TRUE(sameBits(std::vector<double>(slots->memory, slots->memory + 4), slotsBefore));
    EXPECT_EQ(ring->position, ringPosition);
    EXPECT_EQ(slots->position, slotsPosition);

    EXPECT_EQ(ORVA_CopyFilterMemories(cascade.get(), lowPass.get()), 1);
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterUpdate, ReplacesTheRecordsAndLeavesTheMemories)
{
    const Filter filter = fromRecords(1, {0, 0, 1, 0, 0});
    float x = 3.0f;
    ASSERT_EQ(ORVA_Filter(filter.get(), &x, &x, 1), 1);
    const double delay[] = {0, 0, 0, 1, 0};
    std::vector<double> records(delay, delay + 5);
    EXPECT_EQ(ORVA_UpdateFilterBiquads(filter.get(), 1, records.data()), 1);
    records.assign(5, 99.0); // copied, so that the host may write over its own
    EXPECT_EQ(static_cast<_DFIISOSstate *>(filter->state)->position, 3);
    ASSERT_EQ(ORVA_Filter(filter.get(), &x, &x, 1), 1);
    EXPECT_EQ(x, 3.0f);
}

TEST(FilterUpdate, RefusesInSilenceNullRecordsAndAnotherSectionCount)
{
    const Log log;
    const Filter filter = section();
    const auto before = recordsOf(filter);
    EXPECT_EQ(ORVA_UpdateFilterBiquads(filter.get(), 1, nullptr), 0);
    EXPECT_EQ(ORVA_UpdateFilterBiquads(filter.get(), 65537, nullptr), 0) << "null comes before the count";
    EXPECT_EQ(ORVA_UpdateFilterBiquads(filter.get(), 0, others.data()), 0);
    EXPECT_EQ(ORVA_UpdateFilterBiquads(filter.get(), 2, others.data()), 0);
    EXPECT_EQ(ORVA_UpdateFilterBiquads(filter.get(), 65536, others.data()), 0);
    EXPECT_TRUE(sameBits(recordsOf(filter), before));
    EXPECT_EQ(log.messages, std::vector<Message>{});
    EXPECT_EQ(ORVA_UpdateFilterBiquads(filter.get(), 1, others.data()), 1);
    EXPECT_TRUE(sameBits(recordsOf(filter), others));

    const Filter empty = fromRecords(1, {});
    EXPECT_EQ(ORVA_UpdateFilterBiquads(empty.get(), 0, others.data()), 1);
}

TEST(FilterUpdate, RefusesMoreThan65536RecordsUnderTheNameOfTheConstructor)
{
    const Filter filter = section();
    const auto before = recordsOf(filter);
    const struct {
        uint32_t count;
        const char *message;
    } cases[] = {
        {65537, "ORVA_CreateFilterFromBiquads: Too many biquads (65537)\n"},
        {std::numeric_limits<uint32_t>::max(),
         "ORVA_CreateFilterFromBiquads: Too many biquads (4294967295)\n"},
    };
    for (const auto &c : cases) {
        const Log log;
        EXPECT_EQ(ORVA_UpdateFilterBiquads(filter.get(), c.count, others.data()), 0);
        EXPECT_EQ(log.messages, std::vector<Message>{error(c.message)});
    }
    EXPECT_TRUE(sameBits(recordsOf(filter), before));
}

TEST(FilterUpdate, TakesExactly65536Records)
{
    const Log log;
    std::vector<double> records(5 * 65536, 0.25);
    const Filter filter = fromRecords(1, records);
    ASSERT_NE(filter, nullptr);
    records[5 * 65536 - 1] = 0.75;
    EXPECT_EQ(ORVA_UpdateFilterBiquads(filter.get(), 65536, records.data()), 1);
    EXPECT_TRUE(sameBits(recordsOf(filter), records));
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterUpdate, RefusesADirectFormAndAHandleWithoutAState)
{
    const Log log;
    const Filter direct = delayOfOne();
    const std::vector<double> records(5 * 65536, 0.25);
    for (uint32_t count = 0; count <= 65536; ++count)
        ASSERT_EQ(ORVA_UpdateFilterBiquads(direct.get(), count, records.data()), 0) << count;
    float x[] = {1.0f, 2.0f};
    ASSERT_EQ(ORVA_Filter(direct.get(), x, x, 2), 1);
    EXPECT_TRUE(sameBits<float>(x, std::vector<float>{0.0f, 1.0f}));

    _ORVA_FILTER withoutState = {.filterFn = _DFIISOSfilter,
                                 .resetFn = _DFIISOSreset,
                                 .copyMemFn = _DFIISOScopyMem,
                                 .state = nullptr,
                                 .kind = 0,
                                 .numChannels = 1};
    EXPECT_EQ(ORVA_UpdateFilterBiquads(&withoutState, 1, others.data()), 0);
    EXPECT_EQ(ORVA_UpdateFilterBiquads(nullptr, 1, others.data()), 0);
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterUpdate, TestsRecordsAndCountBeforeTheFilter)
{
    const Log log;
    EXPECT_EQ(ORVA_UpdateFilterBiquads(nullptr, 65537, nullptr), 0);
    EXPECT_EQ(log.messages, std::vector<Message>{});
    EXPECT_EQ(ORVA_UpdateFilterBiquads(nullptr, 65537, others.data()), 0);
    const Filter direct = delayOfOne();
    EXPECT_EQ(ORVA_UpdateFilterBiquads(direct.get(), 65538, others.data()), 0);
    EXPECT_EQ(log.messages,
              (std::vector<Message>{error("ORVA_CreateFilterFromBiquads: Too many biquads (65537)\n"),
                                    error("ORVA_CreateFilterFromBiquads: Too many biquads (65538)\n")}));
}

TEST(FilterDestroy, FreesBothStructuresInSilence)
{
    const Log log;
    EXPECT_EQ(ORVA_DestroyFilter(delayOfOne().release()), 1);
    EXPECT_EQ(ORVA_DestroyFilter(section().release()), 1);
    EXPECT_EQ(ORVA_DestroyFilter(fromRecords(0, {}).release()), 1);
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterDestroy, PassesOverArraysThatAreMissing)
{
    const Log log;
    for (const bool isDirect : {true, false}) {
        Filter filter = isDirect ? delayOfOne() : section();
        if (isDirect) {
            auto *state = static_cast<_DFIIstate *>(filter->state);
            for (float **array : {&state->memory, &state->numerator, &state->denominator}) {
                std::free(*array);
                *array = nullptr;
            }
        } else {
            auto *state = static_cast<_DFIISOSstate *>(filter->state);
            for (double **array : {&state->coefs, &state->memory}) {
                std::free(*array);
                *array = nullptr;
            }
        }
        EXPECT_EQ(ORVA_DestroyFilter(filter.release()), 1);
    }
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterDestroy, ReportsAHandleWithoutAState)
{
    const Log log;
    Filter filter = section();
    auto *state = static_cast<_DFIISOSstate *>(filter->state);
    std::free(state->coefs);
    std::free(state->memory);
    std::free(state);
    filter->state = nullptr;
    EXPECT_EQ(ORVA_DestroyFilter(filter.release()), 1);
    EXPECT_EQ(log.messages, std::vector<Message>{error("ORVA_DestroyFilter: Filter state is NULL!")});
}

TEST(FilterDestroy, ReportsAnUnknownStructureAndAbandonsItsState)
{
    const Log log;
    Filter filter = section();
    auto *state = static_cast<_DFIISOSstate *>(filter->state);
    filter->filterFn = nullptr;
    EXPECT_EQ(ORVA_DestroyFilter(filter.release()), 1);
    EXPECT_EQ(log.messages, std::vector<Message>{error("ORVA_DestroyFilter: Invalid filter type!")});
    EXPECT_EQ(state->coefs[0], -0.5) << "still there, and whole";
    std::free(state->coefs);
    std::free(state->memory);
    std::free(state);
}
