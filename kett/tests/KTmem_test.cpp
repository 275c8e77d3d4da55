#include "support/log.h"

#include <kett/KTmem.h>
#include <kett/KTsettings.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

namespace
{

struct Memory {
    KT_MEM *const descriptor = KTMEM_CreateMemDescrEx("test", 0, 0);

    ~Memory()
    {
        EXPECT_EQ(KTMEM_DisposeMemDescr(descriptor), 1);
    }
};

bool isAligned(const void *block, uint64_t alignment)
{
    return reinterpret_cast<uintptr_t>(block) % alignment == 0;
}

bool isZero(const void *block, uint64_t size)
{
    const auto *bytes = static_cast<const unsigned char *>(block);
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; });
}

} // namespace

TEST(MemBlocks, AreZeroedAndAlignedAndApart)
{
    const Memory memory;
    struct Block {
        unsigned char *bytes;
        uint64_t size;
    };
    std::vector<Block> blocks;
    // Twice: the second time the heap has dirty memory to give.
    for (int round = 0; round < 2; ++round) {
        const Memory dirty;
        for (const uint64_t size : {1u, 2u, 15u, 16u, 17u, 100u, 1000u, 4096u, 300000u}) {
            std::memset(KTMEM_NewEx(dirty.descriptor, size, 0), 0xAA, size);
            auto *plain = static_cast<unsigned char *>(KTMEM_NewEx(memory.descriptor, size, 0));
            auto *aligned = static_cast<unsigned char *>(KTMEM_NewAligned(memory.descriptor, 16, size));
            auto *floats = KTMEM_NewFloatVector(memory.descriptor, static_cast<int32_t>(size));
            ASSERT_TRUE(plain != nullptr && aligned != nullptr && floats != nullptr);
            EXPECT_TRUE(isAligned(plain, 16) && isAligned(aligned, 16) && isAligned(floats, 16));
            EXPECT_TRUE(isZero(plain, size) && isZero(aligned, size) && isZero(floats, size * sizeof(float)));
            blocks.push_back({plain, size});
            blocks.push_back({aligned, size});
            blocks.push_back({reinterpret_cast<unsigned char *>(floats), size * sizeof(float)});
        }
    }
    for (size_t i = 0; i < blocks.size(); ++i)
        std::memset(blocks[i].bytes, static_cast<int>(i + 1), blocks[i].size);
    for (size_t i = 0; i < blocks.size(); ++i)
        EXPECT_TRUE(std::all_of(blocks[i].bytes, blocks[i].bytes + blocks[i].size, [&](unsigned char byte) {
            return byte == static_cast<unsigned char>(i + 1);
        }));
}

TEST(MemBlocks, HaveTheAlignmentAskedFor)
{
    const Memory memory;
    for (uint64_t alignment = 1; alignment <= 65536; alignment *= 2)
        for (const uint64_t size : {0u, 1u, 33u, 5000u}) {
            void *const block = KTMEM_NewAligned(memory.descriptor, alignment, size);
            ASSERT_NE(block, nullptr);
            EXPECT_TRUE(isAligned(block, std::max<uint64_t>(alignment, 16))) << alignment;
            EXPECT_TRUE(isZero(block, size)) << alignment;
            std::memset(block, 0xAA, size);
        }
}

TEST(MemBlocks, OfNoBytesAreValidPointers)
{
    const Memory memory;
    EXPECT_NE(KTMEM_NewEx(memory.descriptor, 0, 0), nullptr);
    EXPECT_NE(KTMEM_NewAligned(memory.descriptor, 16, 0), nullptr);
    EXPECT_NE(KTMEM_NewFloatVector(memory.descriptor, 0), nullptr);
}

TEST(MemBlocks, ThatCannotBeHadAreNull)
{
    const Memory memory;
    for (const uint64_t size : {UINT64_MAX, UINT64_MAX - 15, UINT64_MAX - 16, UINT64_MAX - 17,
                                UINT64_MAX - 32, UINT64_MAX / 2, uint64_t{1} << 62}) {
        EXPECT_EQ(KTMEM_NewEx(memory.descriptor, size, 0), nullptr) << size;
        EXPECT_EQ(KTMEM_NewAligned(memory.descriptor, 16, size), nullptr) << size;
        EXPECT_EQ(KTMEM_NewAligned(memory.descriptor, uint64_t{1} << 63, size), nullptr) << size;
    }
    EXPECT_EQ(KTMEM_NewAligned(memory.descriptor, uint64_t{1} << 63, 1), nullptr);
    for (uint64_t missing = 0; missing < 5000; ++missing) // sums beyond 64 bits that leave something small
        ASSERT_EQ(KTMEM_NewAligned(memory.descriptor, 4096, UINT64_MAX - missing), nullptr) << missing;
    for (const uint64_t alignment : {0u, 3u, 12u, 17u, 24u, 100u})
        EXPECT_EQ(KTMEM_NewAligned(memory.descriptor, alignment, 16), nullptr) << alignment;
    EXPECT_EQ(KTMEM_NewAligned(memory.descriptor, UINT64_MAX, 16), nullptr);
    EXPECT_EQ(KTMEM_NewFloatVector(memory.descriptor, -1), nullptr);
    EXPECT_EQ(KTMEM_NewFloatVector(memory.descriptor, INT32_MIN), nullptr);
    EXPECT_NE(KTMEM_NewEx(memory.descriptor, 16, 0), nullptr) << "the descriptor still serves";
}

TEST(MemDescriptor, ANullOneDoesNothing)
{
    EXPECT_EQ(KTMEM_NewEx(nullptr, 16, 0), nullptr);
    EXPECT_EQ(KTMEM_NewAligned(nullptr, 16, 16), nullptr);
    EXPECT_EQ(KTMEM_NewFloatVector(nullptr, 16), nullptr);
    EXPECT_EQ(KTMEM_DisposeMemDescr(nullptr), 0);
    KTMEM_DisplayMemDescr(nullptr);
    EXPECT_EQ(KTMEM_DisposeDisplayed(), 0);
}

TEST(MemDescriptor, TakesAnyHintsAndFlags)
{
    struct Hints {
        const char *name;
        uint32_t first, second;
    };
    for (const auto &hints : {Hints{"XCorr Memory", 0, 0},
                              {"ORVA_XcorCoef local mem", 1024, 0},
                              {"Solafs channel", 0, 8},
                              {"", UINT32_MAX, UINT32_MAX},
                              {nullptr, 0, 0}}) {
        KT_MEM *const memory = KTMEM_CreateMemDescrEx(hints.name, hints.first, hints.second);
        ASSERT_NE(memory, nullptr);
        EXPECT_NE(KTMEM_NewEx(memory, 10, UINT32_MAX), nullptr);
        EXPECT_EQ(KTMEM_DisposeMemDescr(memory), 1);
    }
}

TEST(MemDescriptor, SeveralAreIndependent)
{
    KT_MEM *const one = KTMEM_CreateMemDescrEx("one", 0, 0);
    const Memory two;
    float *const kept = KTMEM_NewFloatVector(two.descriptor, 100);
    KTMEM_NewFloatVector(one, 100);
    EXPECT_EQ(KTMEM_DisposeMemDescr(one), 1);
    std::fill_n(kept, 100, 1.0f);
    EXPECT_EQ(kept[99], 1.0f);
}

TEST(MemDisplay, LogsNothingByDefault)
{
    support::Log log;
    const Memory memory;
    KTMEM_DisplayMemDescr(memory.descriptor);
    EXPECT_TRUE(log.messages.empty());
}

TEST(MemDisplay, LogsNameBlocksAndBytesWhenAsked)
{
    KTSETTINGS_SetEx(nullptr, "kett.mem.display=%d", 1);
    support::Log log;
    std::string name = "a %s name";
    KT_MEM *const memory = KTMEM_CreateMemDescrEx(name.c_str(), 0, 0);
    KT_MEM *const nameless = KTMEM_CreateMemDescrEx(nullptr, 0, 0);
    name = "changed";
    KTMEM_NewEx(memory, 100, 0);
    KTMEM_NewAligned(memory, 4096, 1000);
    KTMEM_NewFloatVector(memory, 10);
    KTMEM_NewEx(memory, UINT64_MAX, 0); // refused, so it does not count
    KTMEM_DisplayMemDescr(memory);
    KTMEM_DisplayMemDescr(nameless);
    const support::Message expected[] = {
        {KTDEBUG_LEVEL_LOG, -1, "KTMEM_DisplayMemDescr: 'a %s name': 3 blocks, 1140 bytes\n"},
        {KTDEBUG_LEVEL_LOG, -1, "KTMEM_DisplayMemDescr: '': 0 blocks, 0 bytes\n"}};
    EXPECT_EQ(log.messages, std::vector(std::begin(expected), std::end(expected)));
    EXPECT_EQ(KTMEM_DisposeDisplayed(), 2);
}

TEST(MemDisplay, LeavesTheDescriptorAllocated)
{
    const Memory memory;
    float *const floats = KTMEM_NewFloatVector(memory.descriptor, 10);
    KTMEM_DisplayMemDescr(memory.descriptor);
    floats[9] = 1.0f;
    float *const more = KTMEM_NewFloatVector(memory.descriptor, 10);
    ASSERT_NE(more, nullptr);
    more[9] = floats[9];
}

TEST(MemDisposeDisplayed, FreesWhatHasBeenShownAndNotDisposedOf)
{
    KT_MEM *memory[5];
    for (auto &descriptor : memory) {
        descriptor = KTMEM_CreateMemDescrEx("not freed", 0, 0);
        KTMEM_NewEx(descriptor, 1000, 0);
    }
    for (const int i : {0, 1, 2, 3, 1}) // one of them twice, and never number 4
        KTMEM_DisplayMemDescr(memory[i]);
    EXPECT_EQ(KTMEM_DisposeMemDescr(memory[3]), 1); // the first of the list
    EXPECT_EQ(KTMEM_DisposeMemDescr(memory[1]), 1); // one in the middle
    EXPECT_EQ(KTMEM_DisposeMemDescr(memory[0]), 1); // the last
    EXPECT_EQ(KTMEM_DisposeDisplayed(), 1);
    EXPECT_EQ(KTMEM_DisposeDisplayed(), 0);
    EXPECT_EQ(KTMEM_DisposeMemDescr(memory[4]), 1);
}

TEST(MemDescriptor, DifferentOnesServeDifferentThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int k = 0; k < 200; ++k) {
                KT_MEM *const memory = KTMEM_CreateMemDescrEx("thread", 0, 0);
                KTMEM_NewFloatVector(memory, 100)[99] = 1.0f;
                KT_MEM *const shown = KTMEM_CreateMemDescrEx("shown", 0, 0);
                KTMEM_DisplayMemDescr(shown);
                KTMEM_DisplayMemDescr(memory);
                KTMEM_DisposeMemDescr(memory);
            }
        });
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(KTMEM_DisposeDisplayed(), 800);
}
