// The heap. It forwards to the names under which the GNU C library offers its own allocator to those who
// replace malloc: a look-up by dlsym may allocate.
#include "support/interposer_internal.h"

#include <bit>
#include <cerrno>
#include <cstddef>

#include <malloc.h>

using namespace support::interposer;

extern "C" {

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void *__libc_memalign(size_t alignment, size_t size);
void __libc_free(void *block);
}

namespace
{

// A new block, unless it goes beyond the limit.
void *limited(void *block)
{
    if (!state.isLimited || block == nullptr)
        return block;
    const uint64_t size = malloc_usable_size(block);
    if (size > state.heapLeft) {
        __libc_free(block);
        errno = ENOMEM;
        return nullptr;
    }
    state.heapLeft -= size;
    return block;
}

void giveBack(void *block)
{
    if (state.isLimited)
        state.heapLeft += malloc_usable_size(block);
}

} // namespace

extern "C" {

#pragma GCC visibility push(default)

void *malloc(size_t size) noexcept
{
    return allocationFails() ? nullptr : limited(__libc_malloc(size));
}

void *calloc(size_t count, size_t size) noexcept
{
    return allocationFails() ? nullptr : limited(__libc_calloc(count, size));
}

// reallocarray ends here, too.
void *realloc(void *block, size_t size) noexcept
{
    if (allocationFails())
        return nullptr;
    const uint64_t before = block != nullptr ? malloc_usable_size(block) : 0;
    if (state.isLimited && size > before && size - before > state.heapLeft) {
        errno = ENOMEM;
        return nullptr;
    }
    void *const result = __libc_realloc(block, size);
    if (state.isLimited && result != nullptr)
        state.heapLeft -= malloc_usable_size(result) - before;
    return result;
}

void *memalign(size_t alignment, size_t size) noexcept
{
    return allocationFails() ? nullptr : limited(__libc_memalign(alignment, size));
}

void *aligned_alloc(size_t alignment, size_t size) noexcept
{
    return allocationFails() ? nullptr : limited(__libc_memalign(alignment, size));
}

int posix_memalign(void **block, size_t alignment, size_t size) noexcept
{
    if (!std::has_single_bit(alignment) || alignment % sizeof(void *) != 0)
        return EINVAL;
    const int before = errno;
    void *const result = allocationFails() ? nullptr : limited(__libc_memalign(alignment, size));
    errno = before; // the result tells, errno does not
    if (result == nullptr)
        return ENOMEM;
    *block = result;
    return 0;
}

void free(void *block) noexcept
{
    if (block == nullptr)
        return; // asks nothing of the heap
    count(&support::Counts::heap);
    giveBack(block);
    __libc_free(block);
}

#pragma GCC visibility pop

} // extern "C"
