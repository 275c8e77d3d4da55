// What rounds of loading and unloading leave in the heap. The C library's own cache of freed blocks counts as in use and
// fills up round by round, so the test runs without it.
#include "host.h"

#include <algorithm>
#include <vector>

#include <malloc.h>

using namespace host;

TEST(Unload, RoundsDoNotAddUpInTheHeap)
{
    ASSERT_NE(std::getenv("GLIBC_TUNABLES"), nullptr) << "to be run by ctest, which sets it";
    const DataFolder folder;
    std::array<size_t, 40> inUse;
    for (size_t &bytes : inUse) {
        useOnce();
        bytes = mallinfo2().uordblks;
    }
    const size_t settled = std::max(inUse[1], inUse[2]); // the loader itself takes turns between two amounts
    EXPECT_LE(*std::max_element(inUse.begin() + 3, inUse.end()), settled);
}
