// Files.
#include "support/interposer_internal.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace support::interposer;

namespace
{

template <auto *ours, class Result, class... Arguments>
Result fileCall(Result failure, const char *name, Arguments... arguments)
{
    return fileCallFails() ? failure : next<ours>(name)(arguments...);
}

mode_t modeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return fileCall<open>(-1, "open", path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return fileCall<open64>(-1, "open64", path, flags, mode);
}

int openat(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return fileCall<openat>(-1, "openat", folder, path, flags, mode);
}

int mkstemp(char *pattern)
{
    return fileCall<mkstemp>(-1, "mkstemp", pattern);
}

int mkostemp(char *pattern, int flags)
{
    return fileCall<mkostemp>(-1, "mkostemp", pattern, flags);
}

ssize_t read(int file, void *buffer, size_t size)
{
    return fileCall<read>(ssize_t{-1}, "read", file, buffer, size);
}

ssize_t pread(int file, void *buffer, size_t size, off_t offset)
{
    return fileCall<pread>(ssize_t{-1}, "pread", file, buffer, size, offset);
}

ssize_t write(int file, const void *buffer, size_t size)
{
    return fileCall<write>(ssize_t{-1}, "write", file, buffer, size);
}

ssize_t pwrite(int file, const void *buffer, size_t size, off_t offset)
{
    return fileCall<pwrite>(ssize_t{-1}, "pwrite", file, buffer, size, offset);
}

off_t lseek(int file, off_t offset, int origin) noexcept
{
    return fileCall<lseek>(off_t{-1}, "lseek", file, offset, origin);
}

int ftruncate(int file, off_t size) noexcept
{
    return fileCall<ftruncate>(-1, "ftruncate", file, size);
}

int fsync(int file)
{
    return fileCall<fsync>(-1, "fsync", file);
}

int fdatasync(int file)
{
    return fileCall<fdatasync>(-1, "fdatasync", file);
}

int close(int file)
{
    const bool fails = fileCallFails();
    const int error = errno;
    const int result = next<close>("close")(file);
    if (!fails)
        return result;
    errno = error;
    return -1;
}

int rename(const char *from, const char *to) noexcept
{
    return fileCall<rename>(-1, "rename", from, to);
}

int renameat(int fromFolder, const char *from, int toFolder, const char *to) noexcept
{
    return fileCall<renameat>(-1, "renameat", fromFolder, from, toFolder, to);
}

int unlink(const char *path) noexcept
{
    return fileCall<unlink>(-1, "unlink", path);
}

int unlinkat(int folder, const char *path, int flags) noexcept
{
    return fileCall<unlinkat>(-1, "unlinkat", folder, path, flags);
}

int remove(const char *path) noexcept
{
    return fileCall<remove>(-1, "remove", path);
}

int stat(const char *path, struct stat *status) noexcept
{
    return fileCall<stat>(-1, "stat", path, status);
}

int lstat(const char *path, struct stat *status) noexcept
{
    return fileCall<lstat>(-1, "lstat", path, status);
}

int fstat(int file, struct stat *status) noexcept
{
    return fileCall<fstat>(-1, "fstat", file, status);
}

int fstatat(int folder, const char *path, struct stat *status, int flags) noexcept
{
    return fileCall<fstatat>(-1, "fstatat", folder, path, status, flags);
}

int access(const char *path, int mode) noexcept
{
    return fileCall<access>(-1, "access", path, mode);
}

int faccessat(int folder, const char *path, int mode, int flags) noexcept
{
    return fileCall<faccessat>(-1, "faccessat", folder, path, mode, flags);
}

int chmod(const char *path, mode_t mode) noexcept
{
    return fileCall<chmod>(-1, "chmod", path, mode);
}

int fchmod(int file, mode_t mode) noexcept
{
    return fileCall<fchmod>(-1, "fchmod", file, mode);
}

int chown(const char *path, uid_t owner, gid_t group) noexcept
{
    return fileCall<chown>(-1, "chown", path, owner, group);
}

int fchown(int file, uid_t owner, gid_t group) noexcept
{
    return fileCall<fchown>(-1, "fchown", file, owner, group);
}

ssize_t readlink(const char *path, char *buffer, size_t size) noexcept
{
    return fileCall<readlink>(ssize_t{-1}, "readlink", path, buffer, size);
}

char *realpath(const char *path, char *resolved) noexcept
{
    return fileCall<realpath>(static_cast<char *>(nullptr), "realpath", path, resolved);
}

FILE *fopen(const char *path, const char *mode)
{
    return fileCall<fopen>(static_cast<FILE *>(nullptr), "fopen", path, mode);
}

FILE *fdopen(int file, const char *mode) noexcept
{
    return fileCall<fdopen>(static_cast<FILE *>(nullptr), "fdopen", file, mode);
}

size_t fread(void *buffer, size_t size, size_t count, FILE *file)
{
    return fileCall<fread>(size_t{0}, "fread", buffer, size, count, file);
}

size_t fwrite(const void *buffer, size_t size, size_t count, FILE *file)
{
    return fileCall<fwrite>(size_t{0}, "fwrite", buffer, size, count, file);
}

int fflush(FILE *file)
{
    return fileCall<fflush>(EOF, "fflush", file);
}

int fclose(FILE *file)
{
    const bool fails = fileCallFails();
    const int error = errno;
    const int result = next<fclose>("fclose")(file);
    if (!fails)
        return result;
    errno = error;
    return EOF;
}

} // extern "C"
#pragma GCC visibility pop
