// Paths of files as the system writes them.
#pragma once

namespace orva
{

extern const char pathSeparator; // between a folder and what stands in it

} // namespace orva
