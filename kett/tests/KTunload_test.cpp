// The library in a process that loads it at run time.
#include "support/program.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

void runHost(const std::string &what)
{
    const support::Folder folder;
    // Without the cache of each thread, what the heap hands out is what is in use.
    const auto outcome = support::run(
        {"env", "GLIBC_TUNABLES=glibc.malloc.tcache_count=0", KETT_HOST, what, KETT_LIBRARY}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
}

} // namespace

TEST(KettUnload, LeavesNothingBehind)
{
    runHost("rounds");
}

TEST(KettUnload, AtTheEndOfTheProcessIsSafeWhileAThreadStillUsesTheLibrary)
{
    for (int i = 0; i < 10; ++i)
        runHost("exit");
}
