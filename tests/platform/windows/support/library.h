// DLLs that are loaded at run time.
#pragma once

#include <stdexcept>
#include <string>

#include <windows.h>

namespace support
{

constexpr const char *fftwLibrary = "libfftw3f-3.dll";

// Throws where it cannot be loaded.
inline void *openLibrary(const char *path)
{
    void *handle = LoadLibraryA(path);
    if (handle == nullptr)
        throw std::runtime_error(std::string(path) + ": error " + std::to_string(GetLastError()));
    return handle;
}

inline bool closeLibrary(void *handle)
{
    return FreeLibrary(static_cast<HMODULE>(handle)) != FALSE;
}

// A function of the library, or of libkett below it. Throws where there is none of that name.
inline void *functionOf(void *handle, const char *name)
{
    FARPROC address = GetProcAddress(static_cast<HMODULE>(handle), name);
    if (address == nullptr)
        address = GetProcAddress(GetModuleHandleA("libkett.dll"), name);
    if (address == nullptr)
        throw std::runtime_error(std::string(name) + ": not there");
    return reinterpret_cast<void *>(address);
}

// Whether a library is loaded whose file begins like this.
inline bool isMapped(const std::string &library)
{
    return GetModuleHandleA((library.substr(0, library.find('.')) + ".dll").c_str()) != nullptr;
}

} // namespace support
