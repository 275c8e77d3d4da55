// Shared libraries that are loaded at run time.
#pragma once

#include <fstream>
#include <stdexcept>
#include <string>

#include <dlfcn.h>

namespace support
{

constexpr const char *fftwLibrary = "libfftw3f.so";

// Throws where it cannot be loaded.
inline void *openLibrary(const char *path)
{
    void *handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        throw std::runtime_error(dlerror());
    return handle;
}

inline bool closeLibrary(void *handle)
{
    return dlclose(handle) == 0;
}

// A function of the library, or of libkett below it. Throws where there is none of that name.
inline void *functionOf(void *handle, const char *name)
{
    void *address = dlsym(handle, name);
    if (address == nullptr)
        throw std::runtime_error(dlerror());
    return address;
}

// Whether a library is loaded whose file begins like this.
inline bool isMapped(const std::string &library)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find("/" + library) != std::string::npos)
            return true;
    return false;
}

} // namespace support
