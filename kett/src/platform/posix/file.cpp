#include "platform/file.h"

#include "files.h"
#include "write_signals.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kett
{

bool isFileAt(const char *path)
{
    struct stat status;
    return stat(path, &status) == 0 && !S_ISDIR(status.st_mode);
}

bool openToRead(SystemFile &file, const char *path)
{
    // Non-blocking, since a pipe without a writer would hold up the open.
    file.descriptor = openUninterrupted(AT_FDCWD, path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat status;
    if (file.descriptor >= 0 && fstat(file.descriptor, &status) == 0 && S_ISREG(status.st_mode))
        return true;
    if (file.descriptor >= 0)
        closeFile(file);
    return false;
}

Creation createFile(SystemFile &file, const SystemFolder &folder, const char *name, bool isPrivate)
{
    const mode_t mode = isPrivate ? 0600 : 0666; // less the umask
    file.descriptor =
        openUninterrupted(folder.descriptor, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
    if (file.descriptor >= 0)
        return Creation::done;
    return errno == EEXIST ? Creation::nameTaken : Creation::refused;
}

bool giveRights(SystemFile &file, const FileRights &rights)
{
    // Succeeds where a superuser writes a user's file, which stays that user's; elsewhere it belongs to its
    // writer.
    [[maybe_unused]] const int chowned = fchown(file.descriptor, rights.owner, rights.group);
    return fchmod(file.descriptor, rights.mode) == 0;
}

int64_t sizeOf(const SystemFile &file)
{
    struct stat status;
    return fstat(file.descriptor, &status) == 0 ? static_cast<int64_t>(status.st_size) : 0;
}

uint64_t readSome(SystemFile &file, void *buffer, uint64_t size)
{
    const ssize_t count = uninterrupted([&] { return read(file.descriptor, buffer, size); });
    return count > 0 ? static_cast<uint64_t>(count) : 0;
}

uint64_t writeSome(SystemFile &file, const void *buffer, uint64_t size)
{
    const WithoutWriteSignals held;
    const ssize_t count = uninterrupted([&] { return write(file.descriptor, buffer, size); });
    return count > 0 ? static_cast<uint64_t>(count) : 0;
}

bool flushFile(SystemFile &file)
{
    return fsync(file.descriptor) == 0;
}

bool closeFile(SystemFile &file)
{
    const bool closed = close(file.descriptor) == 0 || errno == EINTR;
    file.descriptor = -1;
    return closed;
}

} // namespace kett
