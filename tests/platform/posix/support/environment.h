// The environment that the system gives the process.
#pragma once

#include <cstdlib>
#include <string>

namespace support
{

inline void setVariable(const char *name, const std::string &value)
{
    setenv(name, value.c_str(), 1);
}

inline void unsetVariable(const char *name)
{
    unsetenv(name);
}

// Empty where it is not set.
inline std::string variable(const char *name)
{
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace support
