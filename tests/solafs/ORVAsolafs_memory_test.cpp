// Creation when memory runs out.
#include "support/interposer.h"

#include <orva/ORVAsolafs.h>

#include <gtest/gtest.h>

#include <cstdlib>

#include <malloc.h>

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
