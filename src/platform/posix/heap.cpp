#include "platform/heap.h"

#include <malloc.h>

namespace orva
{

size_t usableSize(void *block)
{
    return malloc_usable_size(block);
}

} // namespace orva
