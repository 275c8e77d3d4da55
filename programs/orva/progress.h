// A line on the terminal that says how far a long run has come.
#pragma once

#include <cstdint>

namespace orva
{

// Shows done of total as a percentage; nothing where the total is not known, -1. Writes nothing unless standard error is a
// terminal, nothing during the first third of a second, and ten times a second at most, so it may be called for every
// frame.
void showProgress(int64_t done, int64_t total);

// Takes the line away before that.
void clearProgress();

} // namespace orva
