#include "platform/heap.h"

#include <array>

#include <windows.h>

namespace orva
{

// The block may come from another C runtime than ours, and from a heap of that one's own.
size_t usableSize(void *block)
{
    std::array<HANDLE, 64> heaps;
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    for (DWORD i = 0; i < count && i < heaps.size(); ++i)
        if (HeapValidate(heaps[i], 0, block))
            return HeapSize(heaps[i], 0, block);
    return 0;
}

} // namespace orva
