// The commands of the program. Each adds itself with its options, its help and examples, and what is done when it is given.
#pragma once

#include <CLI/CLI.hpp>

namespace orva
{

void addInfo(CLI::App &program);
void addResample(CLI::App &program);

} // namespace orva
