#include "comparison.h"

#include "hashes.h"
#include "transforms.h"

#include <cstdio>
#include <cstring>

namespace bits
{
namespace
{

const char *inTable(const Family &family)
{
    for (const Hash &row : hashes)
        if (std::strcmp(row.family, family.name) == 0)
            return row.hash;
    return "";
}

} // namespace

Digest resultsOf(const Family &family)
{
    Digest results;
    family.compute(results);
    return results;
}

bool compare(orva::Level level)
{
    if (!orva::forceLevel(level)) {
        std::printf("level %s: not run, this processor lacks it\n", orva::nameOf(level));
        return true;
    }
    bool areEqual = true;
    for (const Family &family : families()) {
        const Digest results = resultsOf(family);
        const std::string hash = results.hexadecimal();
        const bool isEqual = family.takesMaths || hash == inTable(family);
        std::printf("%-9s%-15s%8lld values  %s%s\n", orva::nameOf(level), family.name,
                    static_cast<long long>(results.valueCount()), hash.c_str(),
                    isEqual ? "" : "  not that of the table");
        areEqual = areEqual && isEqual;
    }
    return areEqual;
}

bool compareDistances()
{
    bool areNear = true;
    for (const Distance &distance : distances()) {
        const bool isNear = distance.largest <= distance.allowed;
        std::printf("%-21s off by %.1e of the largest value, of %.0e allowed%s\n", distance.name,
                    distance.largest, distance.allowed, isNear ? "" : ": too far");
        areNear = areNear && isNear;
    }
    return areNear;
}

} // namespace bits
