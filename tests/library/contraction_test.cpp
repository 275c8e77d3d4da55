// The code of both libraries, compiled for a processor with fused multiply-add, must not hold one: it rounds once
// where the results are defined to round twice. Nor may it compute on the x87 registers, which are wider.
#include "support/command.h"

#include <cstddef>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace
{

using Lines = std::vector<std::string>;

struct Scan {
    size_t instructionCount = 0; // looked at
    Lines found;
};

// The instructions whose name `isWanted` takes, in the object files that a list names, one a line.
template <class Predicate> Scan scan(const std::string &list, Predicate isWanted)
{
    Scan result;
    std::ifstream objects(list);
    for (std::string object; std::getline(objects, object);)
        for (const auto &line : support::linesOf("objdump -d --no-show-raw-insn '" + object + "'")) {
            const size_t tab = line.find('\t');
            if (tab == std::string::npos)
                continue;
            ++result.instructionCount;
            if (isWanted(line.substr(tab + 1, line.find(' ', tab) - tab - 1)))
                result.found.push_back(object + ":" + line);
        }
    return result;
}

bool isFused(const std::string &name)
{
    return name.starts_with("vfm") || name.starts_with("vfnm"); // vfmadd.., vfmsub.., vfnmadd.., vfnmsub..
}

bool isX87Arithmetic(const std::string &name)
{
    static const std::set<std::string> control = {"fldcw",  "fnstcw", "fldenv", "fnstenv", "fwait", "fnclex",
                                                  "fnstsw", "fninit", "fxsave", "fxrstor", "femms"};
    return name.starts_with("f") && !control.contains(name);
}

} // namespace

TEST(Contraction, TheScanSeesWhatItLooksFor)
{
    EXPECT_EQ(scan(PROBE_FOUND, isFused).found.size(), 1u);
    EXPECT_FALSE(scan(PROBE_FOUND, isX87Arithmetic).found.empty());
}

TEST(Contraction, ProductAndSumStayApartWithTheOptionsOfTheLibraries)
{
    const auto isPart = [](const std::string &name) { return name == "vmulsd" || name == "vaddsd"; };
    EXPECT_EQ(scan(PROBE_PLAIN, isPart).found.size(), 2u);
    EXPECT_EQ(scan(PROBE_PLAIN, isFused).found, Lines{});
}

TEST(Contraction, NeitherLibraryHoldsAFusedMultiplyAdd)
{
    for (const char *list : {ORVA_OBJECTS, KETT_OBJECTS}) {
        const Scan result = scan(list, isFused);
        EXPECT_EQ(result.found, Lines{});
        EXPECT_GT(result.instructionCount, 1000u) << list;
    }
}

TEST(Contraction, NeitherLibraryComputesOnX87Registers)
{
    for (const char *list : {ORVA_OBJECTS, KETT_OBJECTS})
        EXPECT_EQ(scan(list, isX87Arithmetic).found, Lines{}) << list;
}
