// The levels of the kernels.
#include "common/cpu.h"
#include "fft/kernels/ORVAfft_kernels.h"

#include <gtest/gtest.h>

#include <string>

using namespace orva;

TEST(Level, TheBestThatIsAvailableIsInForceAtTheStart)
{
    Level best = Level::plain;
    for (const Level level : allLevels)
        if (isAvailable(level))
            best = level;
    EXPECT_EQ(levelInForce(), best);
    EXPECT_GE(best, Level::baseline);
}

TEST(Level, AForcedOneIsInForceAndOneThatIsMissingIsRefused)
{
    for (const Level level : allLevels) {
        const Level before = levelInForce();
        EXPECT_EQ(forceLevel(level), isAvailable(level)) << nameOf(level);
        EXPECT_EQ(levelInForce(), isAvailable(level) ? level : before) << nameOf(level);
    }
}

TEST(Level, KernelsAreThoseOfTheLevelInForce)
{
    for (const Level level : allLevels) {
        if (forceLevel(level)) {
            EXPECT_EQ(&kernels<FftKernels>(), &kernelsAt<FftKernels>(level)) << nameOf(level);
        }
    }
    EXPECT_NE(&kernelsAt<FftKernels>(Level::plain), &kernelsAt<FftKernels>(Level::baseline));
}

TEST(Level, NamesAreThoseOfTheDocuments)
{
    std::string names;
    for (const Level level : allLevels)
        names += std::string(nameOf(level)) + " ";
    EXPECT_EQ(names, "plain baseline avx2 avx512 ");
}
