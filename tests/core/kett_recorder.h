// A stand-in for libkett that does next to nothing and writes down every call that it gets.
#pragma once

#include <string>
#include <vector>

namespace recorder
{

// The calls in order, each with the arguments that say something, as in "KTSETTINGS_SetDefaultEx null key=%d 0".
inline std::vector<std::string> calls;

// What the environment value KT_DATA_PATH is; null: not set. No file is ever found, and all can be written.
inline const char *dataPath = nullptr;

} // namespace recorder
