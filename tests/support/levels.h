// The levels of the kernels that this processor and this build can run, for tests that hold each one to the plain form.
#pragma once

#include "common/cpu.h"

#include <cstdio>
#include <vector>

namespace support
{

// All but the plain one. Says once which there are not.
inline std::vector<orva::Level> fasterLevels()
{
    static bool isSaid = false;
    std::vector<orva::Level> levels;
    for (const auto level : orva::allLevels) {
        if (!orva::isAvailable(level) && !isSaid)
            std::printf("level %s: not run, this processor lacks it\n", orva::nameOf(level));
        else if (orva::isAvailable(level) && level != orva::Level::plain)
            levels.push_back(level);
    }
    isSaid = true;
    return levels;
}

} // namespace support
