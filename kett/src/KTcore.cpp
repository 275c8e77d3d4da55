#include <kett/KTcore.h>

#include <atomic>

namespace kett
{

namespace
{

constinit std::atomic<int32_t> uses{0};

} // namespace

} // namespace kett

using kett::uses;

int32_t KTCORE_Initialize(void)
{
    return uses.fetch_add(1) + 1;
}

int32_t KTCORE_Finalize(void)
{
    int32_t before = uses.load();
    do {
        if (before == 0)
            return 0;
    } while (!uses.compare_exchange_weak(before, before - 1));
    return before - 1;
}
