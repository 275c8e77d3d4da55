// What a constructor keeps of its memory in a host with a locale of its own.
#include "filter/ORVAfilter_reference.h"
#include "support/comma_locale.h"

#include <orva/ORVAfilter.h>

#include <malloc.h>

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
