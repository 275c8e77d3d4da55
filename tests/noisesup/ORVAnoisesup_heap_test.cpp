// What becomes of a suppressor that does not get its memory.
#include "support/interposer.h"
#include "support/log.h"

#include <orva/ORVAnoisesup.h>

#include <gtest/gtest.h>

#include <malloc.h>

TEST(NoiseSupHeap, ASuppressorThatRunsOutOfMemoryIsNullAndGivesAllBack)
{
    const support::Log log;
    for (const int32_t rate : {8000, 16000, 32000}) {
        // After the descriptor's two, the record and two blocks.
        const uint64_t instance = rate == 32000 ? 6 : 4;
        uint64_t n = 1;
        for (bool hasFailed = true; hasFailed; ++n) {
            if (n == instance) // the WebRTC library writes to it untested
                continue;
            const auto createOften = [&] {
                for (int round = 0; round < 50; ++round) {
                    support::failAllocation(n);
                    ORVA_NOISESUP *suppressor = ORVA_CreateNoiseSupEx(rate, 2);
                    hasFailed = support::endFailure();
                    EXPECT_EQ(suppressor == nullptr, hasFailed) << rate << " Hz, allocation " << n;
                    if (suppressor != nullptr)
                        ORVA_DestroyNoiseSup(suppressor);
                }
            };
            createOften(); // fills malloc's own caches
            const size_t before = mallinfo2().uordblks;
            createOften();
            EXPECT_EQ(mallinfo2().uordblks, before) << rate << " Hz, allocation " << n;
        }
        EXPECT_GT(n, 6u) << "descriptor, record, instance and frames";
    }
    EXPECT_TRUE(log.messages.empty());
}
