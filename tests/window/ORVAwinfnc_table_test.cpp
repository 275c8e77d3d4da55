// The table of windows, which holds a stored gain that no operation shows.
#include "window/ORVAwinfnc_internal.h"

#include "support/bits.h"

#include <gtest/gtest.h>
#include <iterator>

TEST(WindowTable, HoldsElevenRecordsInOrder)
{
    const struct {
        int32_t type;
        const char *name;
        double normFactor;
    } expected[] = {
        {0, "Rectangular", 1.0},
        {1, "Triangular", 0.5},
        {2, "Half-Triangular", 0.5},
        {3, "Hanning", 0.5009765625},
        {4, "Hanning-Periodic", 0.5009765625},
        {5, "Hamming", 0.5391015625},
        {6, "Blackman", 0.41671875},
        {7, "Blackman-Harris", 0.41671875},
        {8, "Blackman-Nuttall", 0.41671875},
        {9, "Nuttal", 0.41671875},
        {10, "Flat-Top", 0.41671875},
    };
    ASSERT_EQ(std::size(_WinDefTable), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(_WinDefTable[i].type, expected[i].type);
        EXPECT_STREQ(_WinDefTable[i].name, expected[i].name);
        EXPECT_EQ(_WinDefTable[i].normFactor, expected[i].normFactor);
        EXPECT_EQ(sizeof _WinDefTable[i].name, 128u);
    }
}

TEST(WindowTable, EachGeneratorFillsTheLengthGivenAndNoMore)
{
    for (const WindowDef &window : _WinDefTable)
        for (uint32_t length : {0u, 1u, 2u, 3u, 8u, 9u}) {
            std::vector<float> samples(length + 2, 77.0f);
            window.generator(samples.data() + 1, length);
            EXPECT_EQ(samples.front(), 77.0f) << window.name;
            EXPECT_EQ(samples.back(), 77.0f) << window.name;
            for (uint32_t i = 1; i <= length; ++i)
                EXPECT_NE(samples[i], 77.0f) << window.name << " of " << length << " left " << i;
        }
}
