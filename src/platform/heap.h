// What the C heap tells of its blocks.
#pragma once

#include <cstddef>

namespace orva
{

// The bytes of a block of malloc that may be written, at least as many as were asked for.
size_t usableSize(void *block);

} // namespace orva
