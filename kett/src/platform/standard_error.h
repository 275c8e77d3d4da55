// Where messages go that no sink takes.
#pragma once

#include <cstddef>

namespace kett
{

// Hands the whole message to the system in one call.
void writeToStandardError(const char *text, size_t length);

} // namespace kett
