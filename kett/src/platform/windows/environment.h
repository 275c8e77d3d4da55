// What the reading of the environment leaves behind.
#pragma once

namespace kett
{

// Frees the values that were given out.
void discardSystemVariables();

} // namespace kett
