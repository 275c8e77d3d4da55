// How files and folders are opened.
#pragma once

#include <cerrno>

#include <fcntl.h>

namespace kett
{

// Makes a call again until no signal interrupts it.
template <class Call> auto uninterrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

// openat(), for this program alone.
inline int openUninterrupted(int folder, const char *path, int flags, mode_t mode = 0)
{
    return uninterrupted([&] { return openat(folder, path, flags | O_CLOEXEC, mode); });
}

} // namespace kett
