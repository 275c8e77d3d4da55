// What both converters need for a block, and the error when there is none.
#pragma once

#include <cstdint>

namespace orva
{

// The error for whatever is out of range or out of memory.
void reportInvalidParameters();

// Makes room for `count` doubles and records `capacity` for it, unless that much is there. False, with nothing changed,
// when memory is out.
bool growWork(double *&work, int32_t &workCapacity, int32_t capacity, int64_t count);

} // namespace orva
