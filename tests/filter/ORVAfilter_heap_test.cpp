// What becomes of a constructor that does not get its memory.
#include "filter/ORVAfilter_reference.h"
#include "support/comma_locale.h"
#include "support/interposer.h"

#include <orva/ORVAfilter.h>

#include <malloc.h>

using support::endFailure;
using support::failAllocation;

TEST(FilterHeap, AConstructorThatRunsOutOfMemoryGivesNull)
{
    const double coefs[] = {1.0, 0.5, 0.25, 0.5, 0.25};
    for (const bool direct : {true, false}) {
        const auto create = [&] {
            return direct ? ORVA_CreateFilterFromCoefs(2, 5, coefs, 3, coefs)
                          : ORVA_CreateFilterFromBiquads(2, 1, coefs);
        };
        const uint64_t allocations = direct ? 5 : 4; // handle, state and three or two arrays
        for (uint64_t n = 1; n <= allocations; ++n) {
            failAllocation(n);
            const auto *filter = create();
            EXPECT_TRUE(endFailure()) << n;
            EXPECT_EQ(filter, nullptr) << n;
        }
        failAllocation(allocations + 1);
        const Filter filter(create());
        EXPECT_FALSE(endFailure());
        EXPECT_NE(filter, nullptr);
    }
}

TEST(FilterHeap, AConstructorThatFailsGivesBackWhatItTook)
{
    const double coefs[] = {1.0, 0.5, 0.25, 0.5, 0.25};
    const auto fail = [&](uint64_t n) {
        failAllocation(n);
        const bool none = ORVA_CreateFilterFromCoefs(2, 5, coefs, 3, coefs) == nullptr;
        failAllocation(std::min<uint64_t>(n, 4));
        return none && ORVA_CreateFilterFromBiquads(2, 1, coefs) == nullptr;
    };
    for (uint64_t n = 1; n <= 5; ++n) {
        bool refused = true;
        const auto failOften = [&] {
            for (int round = 0; round < 100; ++round)
                refused = fail(n) && refused;
        };
        failOften(); // fills malloc's own caches
        const size_t before = mallinfo2().uordblks;
        failOften();
        EXPECT_EQ(mallinfo2().uordblks, before) << n;
        EXPECT_TRUE(refused) << n;
    }
    endFailure();
}

TEST(FilterHeap, ATextThatRunsOutOfMemoryAnywhereGivesNullAndGivesAllBack)
{
    const std::string padding(3000, ' ');
    const std::string forms[] = {"order=5 fpass=0.25", "type=bp order=4 fpass1=0.25 fpass2=0.5",
                                 "biquads=[1 2 3 4 5; 1 2 3 4 5]", "numerator=[1 2 3] denominator=[1 0.5]",
                                 padding + "order=3 fpass=0.25"};
    for (const auto &text : forms) {
        const auto create = [&](uint64_t n) {
            failAllocation(n);
            Filter filter(ORVA_CreateFilter("%s", text.c_str()));
            return std::pair(endFailure(), std::move(filter));
        };
        uint64_t n = 1;
        for (;; ++n) {
            bool hasFailed = true;
            const auto failOften = [&] {
                for (int round = 0; round < 50; ++round) {
                    const auto [failed, filter] = create(n);
                    hasFailed = failed;
                    EXPECT_EQ(filter == nullptr, failed) << text << ", allocation " << n;
                }
            };
            failOften(); // fills malloc's own caches
            const size_t before = mallinfo2().uordblks;
            failOften();
            EXPECT_EQ(mallinfo2().uordblks, before) << text << ", allocation " << n;
            if (!hasFailed)
                break;
        }
        EXPECT_GT(n, 5u) << text << ": the text, and what the filter holds";
    }
}

TEST(FilterHeap, ATextLosesNothingInAHostsOwnLocale)
{
    const support::CommaLocale comma;
    const auto createOften = [] {
        for (int round = 0; round < 100; ++round)
            EXPECT_NE(Filter(ORVA_CreateFilter("order=%d fpass=%f", 4, 0.25)), nullptr);
    };
    createOften(); // fills malloc's own caches
    const size_t before = mallinfo2().uordblks;
    createOften();
    EXPECT_EQ(mallinfo2().uordblks, before);
}
