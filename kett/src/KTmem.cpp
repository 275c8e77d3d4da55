#include <kett/KTmem.h>

#include "KTlock.h"
#include "KTtext.h"

#include <kett/KTdebug.h>
#include <kett/KTsettings.h>

#include <bit>
#include <cstddef>
#include <cstdlib>

namespace kett
{

// Stands in front of every block.
struct alignas(16) Block {
    Block *next;
};

} // namespace kett

struct KT_MEM {
    char *name;
    kett::Block *blocks;
    uint64_t blockCount;
    uint64_t byteCount; // as asked for
    KT_MEM *nextShown;  // in the list of shown descriptors
    KT_MEM **shownLink; // what points to it there, which its neighbours change under the lock
    bool isShown;       // whether it is there, which its own thread alone reads and writes
};

namespace kett
{

namespace
{

constexpr uint64_t leastAlignment = 16;
// Where no type needs as much, the C libraries of 64-bit systems, glibc by its manual, still align to two pointers.
static_assert(alignof(std::max_align_t) >= leastAlignment || 2 * sizeof(void *) >= leastAlignment,
              "calloc must align to 16 bytes");

constinit KT_MEM *shownDescriptors = nullptr;

void release(KT_MEM *memory)
{
    while (memory->blocks != nullptr) {
        Block *block = memory->blocks;
        memory->blocks = block->next;
        std::free(block);
    }
    std::free(memory->name);
    std::free(memory);
}

} // namespace

} // namespace kett

using namespace kett;

KT_MEM *KTMEM_CreateMemDescrEx(const char *name, uint32_t, uint32_t)
{
    auto *memory = static_cast<KT_MEM *>(std::calloc(1, sizeof(KT_MEM)));
    char *copy = copied(name != nullptr ? name : "");
    if (memory == nullptr || copy == nullptr) {
        std::free(memory);
        std::free(copy);
        return nullptr;
    }
    memory->name = copy;
    return memory;
}

void *KTMEM_NewAligned(KT_MEM *memory, uint64_t alignment, uint64_t size)
{
    if (memory == nullptr || !std::has_single_bit(alignment))
        return nullptr;
    const uint64_t padding = alignment > leastAlignment ? alignment - leastAlignment : 0;
    uint64_t total = 0;
    if (__builtin_add_overflow(size, padding, &total) || __builtin_add_overflow(total, sizeof(Block), &total))
        return nullptr;
    auto *block = static_cast<Block *>(std::calloc(1, total));
    if (block == nullptr)
        return nullptr;
    block->next = memory->blocks;
    memory->blocks = block;
    ++memory->blockCount;
    memory->byteCount += size;
    auto *content = reinterpret_cast<std::byte *>(block + 1);
    return content + (0 - reinterpret_cast<uintptr_t>(content)) % alignment;
}

void *KTMEM_NewEx(KT_MEM *memory, uint64_t size, uint32_t)
{
    return KTMEM_NewAligned(memory, leastAlignment, size);
}

float *KTMEM_NewFloatVector(KT_MEM *memory, int32_t count)
{
    if (count < 0)
        return nullptr;
    return static_cast<float *>(
        KTMEM_NewAligned(memory, leastAlignment, static_cast<uint64_t>(count) * sizeof(float)));
}

int32_t KTMEM_DisposeMemDescr(KT_MEM *memory)
{
    if (memory == nullptr)
        return 0;
    if (memory->isShown) {
        const Hold hold(Data::descriptors);
        *memory->shownLink = memory->nextShown;
        if (memory->nextShown != nullptr)
            memory->nextShown->shownLink = memory->shownLink;
    }
    release(memory);
    return 1;
}

void KTMEM_DisplayMemDescr(KT_MEM *memory)
{
    if (memory == nullptr)
        return;
    if (KTSETTINGS_GetBoolEx(nullptr, "kett.mem.display=[0]")) {
        KTDEBUG_Log(-1, "KTMEM_DisplayMemDescr: '%s': %llu blocks, %llu bytes\n", memory->name,
                    static_cast<unsigned long long>(memory->blockCount),
                    static_cast<unsigned long long>(memory->byteCount));
    }
    if (memory->isShown)
        return;
    memory->isShown = true;
    const Hold hold(Data::descriptors);
    memory->nextShown = shownDescriptors;
    memory->shownLink = &shownDescriptors;
    if (shownDescriptors != nullptr)
        shownDescriptors->shownLink = &memory->nextShown;
    shownDescriptors = memory;
}

int32_t KTMEM_DisposeDisplayed(void)
{
    KT_MEM *memory = nullptr;
    {
        const Hold hold(Data::descriptors);
        memory = shownDescriptors;
        shownDescriptors = nullptr;
    }
    int32_t count = 0;
    for (; memory != nullptr; ++count) {
        KT_MEM *next = memory->nextShown;
        release(memory);
        memory = next;
    }
    return count;
}
