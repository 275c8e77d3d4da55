#include "support/command.h"

#include <gtest/gtest.h>

TEST(Format, EverySourceFileStandsAsTheFormatterWritesIt)
{
    EXPECT_NO_THROW(support::linesOf(LINT " format"));
}
