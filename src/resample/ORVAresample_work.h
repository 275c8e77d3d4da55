// The work array of both converters, and their one error.
#pragma once

#include <cstdint>

namespace orva
{

// The error for whatever is out of range or out of memory.
void reportInvalidParameters();

// Grows `work` to `count` doubles and sets `workCapacity` to `capacity`, unless it is at least that already. False, with
// nothing changed, when memory is out.
bool growWork(double *&work, int32_t &workCapacity, int32_t capacity, int64_t count);

} // namespace orva
