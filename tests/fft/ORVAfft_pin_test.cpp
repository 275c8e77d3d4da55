// FFTW stays loaded when the library that brought it is unloaded. This program is linked with neither.
#include "support/environment.h"
#include "support/library.h"

#include <gtest/gtest.h>

using support::isMapped;

TEST(FftwPin, FftwOutlivesTheLibrary)
{
    support::unsetVariable("KT_DATA_PATH");
    ASSERT_FALSE(isMapped(support::fftwLibrary));
    for (int round = 0; round < 3; ++round) {
        void *orva = support::openLibrary(ORVA_LIBRARY);
        EXPECT_TRUE(isMapped(support::fftwLibrary));
        EXPECT_TRUE(support::closeLibrary(orva));
        EXPECT_FALSE(isMapped("liborva.so"));
        EXPECT_TRUE(isMapped(support::fftwLibrary));
    }
}
