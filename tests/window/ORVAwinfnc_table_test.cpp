// The table of windows, which holds a stored gain that no operation shows.
#include "window/ORVAwinfnc_internal.h"
#include "window/definitions.h"

#include <gtest/gtest.h>

#include <vector>

using namespace orva;

TEST(WindowTable, HoldsTheDefinedRecordsInOrder)
{
    ASSERT_EQ(windows().size(), definitions.size());
    for (size_t i = 0; i < definitions.size(); ++i) {
        SCOPED_TRACE(definitions[i].name);
        EXPECT_EQ(windows()[i].type, definitions[i].type);
        EXPECT_STREQ(windows()[i].name, definitions[i].name);
        EXPECT_EQ(windows()[i].normFactor, definitions[i].storedGain);
        EXPECT_EQ(sizeof windows()[i].name, 128u);
    }
}

TEST(WindowTable, EachGeneratorFillsTheLengthGivenAndNoMore)
{
    for (const WindowDef &window : windows())
        for (uint32_t length : {0u, 1u, 2u, 3u, 8u, 9u}) {
            std::vector<float> samples(length + 2, 77.0f);
            window.generator(samples.data() + 1, length);
            EXPECT_EQ(samples.front(), 77.0f) << window.name;
            EXPECT_EQ(samples.back(), 77.0f) << window.name;
            for (uint32_t i = 1; i <= length; ++i)
                EXPECT_NE(samples[i], 77.0f) << window.name << " of " << length << " left " << i;
        }
}
