// What the calls ask of the heap, of locks and of the system.
#include "solafs/signals.h"
#include "support/interposer.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <orva/ORVAsolafs.h>

TEST(SolafsRealTime, InputOutputAndCursorAskForNothing)
{
    const std::vector<float> samples = voice(12000);
    std::vector<float> frames(30000);
    ORVA_SOLAFS *solafs = ORVA_SolafsCreate(20, 16000, 1);
    for (const float speed : {1.0f, 0.6f, 2.7f, 0.0f, 40.0f}) {
        support::begin();
        ORVA_SolafsInputData(solafs, 0, samples.data(), 12000, speed);
        ORVA_SolafsOutputData(solafs, 0, frames.data(), 20000);
        ORVA_SolafsTranslateCursorPosition(solafs, 5000);
        EXPECT_EQ(support::end(), support::Counts{}) << speed;
    }
    ORVA_SolafsDestroy(solafs);
}

TEST(SolafsCreate, GivesNullAndKeepsNothingWhenAnyAllocationFails)
{
    ASSERT_NE(std::getenv("GLIBC_TUNABLES"), nullptr) << "to be run by ctest, which sets it";
    uint64_t n = 1;
    for (;; ++n) {
        const size_t before = mallinfo2().uordblks;
        support::failAllocation(n);
        ORVA_SOLAFS *solafs = ORVA_SolafsCreate(20, 16000, 1);
        if (!support::endFailure()) {
            EXPECT_NE(solafs, nullptr);
            break;
        }
        EXPECT_EQ(solafs, nullptr) << n;
        EXPECT_EQ(mallinfo2().uordblks, before) << n;
    }
    EXPECT_EQ(n, 9u); // descriptor, its name, the record, five arrays: none was left out
}
