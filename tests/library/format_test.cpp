// What script/lint finds in a few seconds.
#include "support/command.h"

#include <gtest/gtest.h>

TEST(Format, EverySourceFileStandsAsTheFormatterWritesIt)
{
    EXPECT_NO_THROW(support::linesOf(LINT " format"));
}

TEST(Cppcheck, HasNothingToSayAboutTheLibraries)
{
    EXPECT_NO_THROW(support::linesOf(LINT " cppcheck"));
}
