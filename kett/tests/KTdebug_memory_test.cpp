// Messages for which there is no memory.
#include "support/standard_error.h"

#include <kett/KTdebug.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include <sys/resource.h>

using support::StandardError;

namespace
{

// No more blocks of 8 MB: a sanitizer has its own limit, which the build sets for this test.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
void forbidLargeBlocks(bool forbidden)
{
    static rlimit before;
    if (forbidden)
        getrlimit(RLIMIT_AS, &before);
    const rlimit none{1, before.rlim_max};
    setrlimit(RLIMIT_AS, forbidden ? &none : &before);
}
#else
void forbidLargeBlocks(bool) {}
#endif

} // namespace

TEST(DebugMessages, AreCutWhereMemoryIsOut)
{
    static char kept[2000];
    const auto keep = [](void *, int32_t, int32_t, const char *text) {
        snprintf(kept, sizeof kept, "%s", text);
    };
    StandardError standardError;
    forbidLargeBlocks(true);
    KTDEBUG_Log(-1, "%*d", 9 << 20, 5);
    KTDEBUG_SetSink(keep, nullptr);
    KTDEBUG_Log(-1, "%*d", 9 << 20, 5);
    KTDEBUG_SetSink(nullptr, nullptr);
    forbidLargeBlocks(false);
    const std::string cut(1023, ' ');
    EXPECT_EQ(kept, cut);
    const auto pieces = standardError.pieces(); // where a sanitizer may have its say as well
    EXPECT_EQ(std::count(pieces.begin(), pieces.end(), cut), 1);
}
