// Time that passes.
#pragma once

#include <cstdint>

namespace kett
{

// Sleeps at least the given time, which is above 0, signals notwithstanding.
void sleepFor(int32_t milliseconds);

} // namespace kett
