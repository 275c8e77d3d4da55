// Sets of names, compared so that a failure shows the few that differ.
#pragma once

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

using Names = std::set<std::string>;

inline Names missing(const Names &from, const Names &wanted)
{
    Names result;
    std::set_difference(wanted.begin(), wanted.end(), from.begin(), from.end(),
                        std::inserter(result, result.end()));
    return result;
}
