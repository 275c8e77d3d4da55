// The instructions that both libraries consist of. There must be no fused multiply-add, which rounds once where the results
// are defined to round twice, and no arithmetic on the x87 registers, which are wider. Without flags for newer processors,
// their instructions stand in the kernels of their own level and nowhere else.
// Here are the builds that show most; all others, which take long, are in instructions_slow_test.cpp.
#include "instructions.h"

#include <gtest/gtest.h>

TEST(Instructions, TheScanSeesWhatItLooksFor)
{
    EXPECT_EQ(scanOf(PROBE_FOUND, isFused).found.size(), 1u);
    EXPECT_FALSE(scanOf(PROBE_FOUND, isX87Arithmetic).found.empty());
}

TEST(Instructions, ProductAndSumStayApartWithTheOptionsOfTheLibraries)
{
    const auto isPart = [](const Instruction &instruction) {
        return instruction.name == "vmulsd" || instruction.name == "vaddsd";
    };
    EXPECT_EQ(scanOf(PROBE_PLAIN, isPart).found.size(), 2u);
    EXPECT_EQ(scanOf(PROBE_PLAIN, isFused).found, Lines{});
}

TEST(Instructions, OfThisBuildAreExactAndWiderOnesInTheirOwnObjects)
{
    Lines objects = objectsIn(LIBORVA_FOLDER);
    for (const auto &object : objectsIn(LIBKETT_FOLDER))
        objects.push_back(object);
    expectExactCode(objects);
    expectWiderCodeInItsOwnObjects(objects);
}

TEST(Instructions, OfGccAreExactForProcessorsWithFusedMultiplyAdd)
{
    expectExactCode(objectsOf("g++", "-O3 -march=x86-64-v3"));
}

TEST(Instructions, OfClangAreExactForProcessorsWithFusedMultiplyAdd)
{
    expectExactCode(objectsOf("clang++", "-O2 -march=x86-64-v3"));
}
