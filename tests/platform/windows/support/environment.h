// The environment that the system gives the process. The C runtime of a test has its own copy of it, which stays as it is,
// as that of any other C runtime would.
#pragma once

#include "support/text.h"

#include <string>

#include <windows.h>

namespace support
{

inline void setVariable(const char *name, const std::string &value)
{
    SetEnvironmentVariableW(wide(name).c_str(), wide(value).c_str());
}

inline void unsetVariable(const char *name)
{
    SetEnvironmentVariableW(wide(name).c_str(), nullptr);
}

// Empty where it is not set.
inline std::string variable(const char *name)
{
    wchar_t value[1024];
    const DWORD length = GetEnvironmentVariableW(wide(name).c_str(), value, 1024);
    return narrow({value, length});
}

} // namespace support
