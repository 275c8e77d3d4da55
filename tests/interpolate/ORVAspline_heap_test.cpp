// What becomes of an estimate that does not get its memory.
#include "support/interposer.h"
#include "support/log.h"

#include <orva/ORVAspline.h>

#include <gtest/gtest.h>

TEST(SplineHeap, AnEstimateThatRunsOutOfMemoryWritesNothing)
{
    const support::Log log;
    const float x[] = {0, 1, 2, 3};
    const float y[] = {1, 0, 4, 2};
    float y2[] = {-77, -77, -77, -77};
    support::failAllocation(1);
    ORVASPLINE_Estimate(x, y, 4, 1e30f, 1e30f, y2);
    EXPECT_TRUE(support::endFailure());
    for (const float value : y2)
        EXPECT_EQ(value, -77);
    EXPECT_TRUE(log.messages.empty());
}
