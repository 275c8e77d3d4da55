// The process that the library runs in.
#pragma once

#include <cstdint>

namespace kett
{

// A number that no other process has at the same time; a child of fork has another one than its parent.
int64_t currentProcess();

// The process ends, and all threads but the calling one have been killed for it, wherever they were. A system that lets
// threads run on to the end never says so.
bool doesProcessEnd();

} // namespace kett
