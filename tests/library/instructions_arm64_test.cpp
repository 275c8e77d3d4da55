// The instructions that both libraries consist of on arm64, as this build has them. Every such processor has fused
// multiply-adds, for numbers and for vectors, which round once where the results are defined to round twice, and estimates
// of reciprocals. There must be none of either.
#include "disassembly.h"
#include "support/pattern.h"

#include <gtest/gtest.h>

namespace
{

bool changesBits(const Instruction &instruction)
{
    static const support::Pattern names("f(n?m(add|sub|la|ls|ad|sb)|cmla|ml[as]l|recp|rsqrt).*");
    return names.match(instruction.name).has_value();
}

Predicate isNamed(const std::string &name)
{
    return [name](const Instruction &instruction) { return instruction.name == name; };
}

} // namespace

TEST(Instructions, TheScanSeesWhatItLooksFor)
{
    for (const char *name : {"fmadd", "fmsub", "fnmadd", "fnmsub", "fmla", "fmls", "frecpe", "frsqrte"}) {
        const Scan scan = scanOf(PROBE_FOUND, isNamed(name));
        EXPECT_FALSE(scan.found.empty()) << name;
        EXPECT_EQ(scanOf(PROBE_FOUND,
                         [&](const Instruction &instruction) {
                             return instruction.name == name && !changesBits(instruction);
                         })
                      .found,
                  Lines{});
    }
}

TEST(Instructions, ProductAndSumStayApartWithTheOptionsOfTheLibraries)
{
    for (const char *name : {"fmul", "fadd"})
        EXPECT_EQ(scanOf(PROBE_PLAIN, isNamed(name)).found.size(), 2u) << "one of numbers, one of vectors";
    EXPECT_EQ(scanOf(PROBE_PLAIN, changesBits).found, Lines{});
}

TEST(Instructions, OfBothLibrariesAreExact)
{
    for (const char *library : {LIBORVA, LIBKETT}) {
        const Scan scan = scanOf(library, changesBits);
        EXPECT_EQ(scan.found, Lines{});
        EXPECT_GT(scan.instructionCount, 4000u) << library;
    }
}
