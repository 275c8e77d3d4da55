// Prints a hash of each family's results at each level that there is, and how far from their definition those are that pass
// through FFTW. Usage:
//     bits          compares with the table; what differs from it ends the program with 1
//     bits table    prints the table anew, as it is checked in; from the plain level
//     bits times    prints what a value costs in the main kernels, at each level, instead
#include "common/cpu.h"
#include "comparison.h"
#include "times.h"

#include <cstdio>
#include <cstring>

using namespace bits;

namespace
{

void printTable()
{
    std::puts("// The hashes of exact results, the same on every system. Made by the program in bits.cpp; "
              "rebuild with:\n"
              "//     build/release/tests/bits/bits table > tests/bits/hashes.h\n"
              "#pragma once\n"
              "\n"
              "namespace bits\n"
              "{\n"
              "\n"
              "struct Hash {\n"
              "    const char *family;\n"
              "    const char *hash;\n"
              "};\n"
              "\n"
              "inline constexpr Hash hashes[] = {");
    for (const Family &family : families())
        if (!family.takesMaths)
            std::printf("    {\"%s\", \"%s\"},\n", family.name, resultsOf(family).hexadecimal().c_str());
    std::puts("};\n\n} // namespace bits");
}

} // namespace

int main(int argumentCount, char **arguments)
{
    if (argumentCount == 2 && std::strcmp(arguments[1], "table") == 0) {
        orva::forceLevel(orva::Level::plain);
        printTable();
        return 0;
    }
    if (argumentCount == 2 && std::strcmp(arguments[1], "times") == 0) {
        for (const orva::Level level : orva::allLevels)
            if (orva::forceLevel(level))
                printTimes();
        return 0;
    }
    if (argumentCount != 1) {
        std::fputs("usage: bits [table | times]\n", stderr);
        return 2;
    }
    bool areEqual = true;
    for (const orva::Level level : orva::allLevels)
        areEqual = compare(level) && areEqual;
    return compareDistances() && areEqual ? 0 : 1;
}
