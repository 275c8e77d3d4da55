// Programs run by a test.
#include "support/program.h"

#include <gtest/gtest.h>

TEST(PeakOf, IsThatOfTheProgramAndNotOfWhatStartsIt)
{
    std::vector<char> own(150000000, 'x'); // all of it touched
    const support::Folder folder;
    EXPECT_EQ(own.back(), 'x');
    EXPECT_LT(support::peakOf({"true"}, folder), 50000);
    const long copied =
        support::peakOf({"dd", "if=/dev/zero", "of=/dev/null", "bs=100000k", "count=1"}, folder);
    EXPECT_GT(copied, 100000);
    EXPECT_LT(copied, 150000);
}

TEST(PeakOf, AProgramThatFailsHasNone)
{
    const support::Folder folder;
    EXPECT_THROW(support::peakOf({"false"}, folder), std::runtime_error);
    EXPECT_THROW(support::peakOf({"no such program"}, folder), std::runtime_error);
}
