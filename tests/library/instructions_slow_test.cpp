// The instructions that both libraries consist of, as instructions_test.cpp looks at them, in every build that a distributor
// may make: with either compiler, for each level of processors, at -O2 and at -O3.
#include "instructions.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace
{

// Compiler, optimisation, processor.
class InstructionsOf : public testing::TestWithParam<std::tuple<const char *, const char *, const char *>>
{
protected:
    Lines objects() const
    {
        const auto [compiler, optimisation, processor] = GetParam();
        return objectsOf(compiler, std::string(optimisation) + " -march=" + processor);
    }
};

class InstructionsForEveryProcessor : public InstructionsOf
{
};

const auto compilers = testing::Values("g++", "clang++");
const auto optimisations = testing::Values("-O2", "-O3");

} // namespace

TEST_P(InstructionsOf, EveryBuildAreExact)
{
    expectExactCode(objects());
}

TEST_P(InstructionsForEveryProcessor, AreExactAndWiderOnesInTheirOwnObjects)
{
    const Lines built = objects();
    expectExactCode(built);
    expectWiderCodeInItsOwnObjects(built);
}

INSTANTIATE_TEST_SUITE_P(Builds, InstructionsOf,
                         testing::Combine(compilers, optimisations,
                                          testing::Values("x86-64-v3", "x86-64-v4")));
INSTANTIATE_TEST_SUITE_P(Builds, InstructionsForEveryProcessor,
                         testing::Combine(compilers, optimisations, testing::Values("x86-64")));
