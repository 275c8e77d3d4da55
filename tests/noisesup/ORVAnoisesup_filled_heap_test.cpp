// The same bits whatever the heap held. glibc fills what malloc gives out when it is asked to, as MALLOC_PERTURB_ does; a
// sanitizer's heap cannot.
#include "ORVAnoisesup_reference.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <malloc.h>

using namespace noisesup;

namespace
{

Frame input(int frame)
{
    Frame samples;
    for (int i = 0; i < 160; ++i)
        samples.push_back(static_cast<int16_t>(((frame * 160 + i) * 7919) % 20000 - 10000));
    return samples;
}

// What comes out of a suppressor made on a heap of which every byte is `fill`.
Frame outputOnHeapOf(int fill)
{
    mallopt(M_PERTURB, fill ^ 0xff); // glibc fills with the complement
    const auto created = suppressor(16000, 3);
    Frame output;
    for (int frame = 0; frame < 100; ++frame) {
        const auto cleaned = run(created, input(frame));
        output.insert(output.end(), cleaned.begin(), cleaned.end());
    }
    return output;
}

} // namespace

TEST(NoiseSupOnAFilledHeap, GivesTheSameBits)
{
    const auto expected = outputOnHeapOf(0x01);
    for (const int fill : {0x3f, 0x55, 0xaa, 0xbf, 0xfe})
        EXPECT_EQ(outputOnHeapOf(fill), expected) << fill;
}

TEST(NoiseSupOnAFilledHeap, TheHeapIsReallyFilled)
{
    mallopt(M_PERTURB, 0x55 ^ 0xff);
    const volatile auto *block = static_cast<unsigned char *>(std::malloc(20000));
    EXPECT_EQ(int{block[12345]}, 0x55);
    std::free(const_cast<unsigned char *>(block));
}
