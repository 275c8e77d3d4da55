// The process that the library runs in.
#pragma once

#include <cstdint>

namespace orva
{

// A number that no other process has at the same time; a child of fork has another one than its parent.
int64_t currentProcess();

} // namespace orva
