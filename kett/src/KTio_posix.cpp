#include <kett/KTio.h>

#include "KTpath_posix.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

struct KT_FILE {
    int descriptor;
    bool isLost;     // a write came out short
    int64_t written; // bytes
    char *target;    // path, null for a file that is read
    char *temporary; // path of what is written, beside the target
};

// In bytes; less than the most that one system call takes.
static constexpr uint64_t longestTransfer = uint64_t{1} << 30;

bool KTIO_FileExists(const char *path)
{
    struct stat status;
    return path != nullptr && stat(path, &status) == 0 && !S_ISDIR(status.st_mode);
}

static int openAgain(const char *path, int flags, mode_t mode = 0)
{
    int descriptor;
    do
        descriptor = open(path, flags | O_CLOEXEC, mode);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

static KT_FILE *newFile()
{
    auto *file = static_cast<KT_FILE *>(std::calloc(1, sizeof(KT_FILE)));
    if (file != nullptr)
        file->descriptor = -1;
    return file;
}

static void freeFile(KT_FILE *file)
{
    std::free(file->target);
    std::free(file->temporary);
    std::free(file);
}

static bool openToRead(KT_FILE *file, const char *path)
{
    // Non-blocking, since a pipe without a writer would hold up the open.
    file->descriptor = openAgain(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat status;
    if (file->descriptor >= 0 && fstat(file->descriptor, &status) == 0 && S_ISREG(status.st_mode))
        return true;
    if (file->descriptor >= 0)
        close(file->descriptor);
    return false;
}

// Creates a file of a name not in use, in the folder of `target`.
static bool createTemporary(KT_FILE *file, mode_t mode)
{
    static std::atomic<uint32_t> counter{0};
    const auto folderLength = static_cast<int>(std::strrchr(file->target, '/') + 1 - file->target);
    const size_t size = static_cast<size_t>(folderLength) + 64;
    file->temporary = static_cast<char *>(std::malloc(size));
    if (file->temporary == nullptr)
        return false;
    do {
        // Short, whatever the target's name, so that it fits where that one does.
        std::snprintf(file->temporary, size, "%.*s.kett-%ld-%lu.tmp", folderLength, file->target,
                      static_cast<long>(getpid()), static_cast<unsigned long>(counter.fetch_add(1)));
        file->descriptor = openAgain(file->temporary, O_WRONLY | O_CREAT | O_EXCL, mode);
    } while (file->descriptor < 0 && errno == EEXIST);
    return file->descriptor >= 0;
}

static bool openToWrite(KT_FILE *file, const char *path)
{
    file->target = kett::resolvedTarget(path);
    if (file->target == nullptr)
        return false;
    struct stat old;
    if (lstat(file->target, &old) != 0)
        return errno == ENOENT && createTemporary(file, 0666); // less the umask
    if (!S_ISREG(old.st_mode) || !kett::mayReplace(file->target, old))
        return false;
    // Closed to everybody else until it has the old file's owner and mode.
    if (!createTemporary(file, 0600))
        return false;
    // Succeeds where a superuser writes a user's file, which stays that user's; elsewhere it belongs to its
    // writer.
    [[maybe_unused]] const int chowned = fchown(file->descriptor, old.st_uid, old.st_gid);
    if (fchmod(file->descriptor, old.st_mode & 0777) == 0)
        return true;
    close(file->descriptor);
    unlink(file->temporary);
    return false;
}

KT_FILE *KTIO_Open(const char *path, const char *mode)
{
    if (path == nullptr || mode == nullptr)
        return nullptr;
    const bool reads = std::strcmp(mode, "r") == 0;
    if (!reads && std::strcmp(mode, "w") != 0)
        return nullptr;
    KT_FILE *file = newFile();
    if (file == nullptr)
        return nullptr;
    if (reads ? openToRead(file, path) : openToWrite(file, path))
        return file;
    freeFile(file);
    return nullptr;
}

int64_t KTIO_FileSize(KT_FILE *file)
{
    if (file == nullptr)
        return 0;
    if (file->target != nullptr)
        return file->written;
    struct stat status;
    return fstat(file->descriptor, &status) == 0 ? static_cast<int64_t>(status.st_size) : 0;
}

uint64_t KTIO_ReadData(KT_FILE *file, void *buffer, uint64_t size)
{
    if (file == nullptr || buffer == nullptr)
        return 0;
    uint64_t done = 0; // stays 0 where the system refuses, as in a file that is being written
    while (done < size) {
        const ssize_t count = read(file->descriptor, static_cast<char *>(buffer) + done,
                                   std::min(size - done, longestTransfer));
        if (count > 0)
            done += static_cast<uint64_t>(count);
        else if (count == 0 || errno != EINTR)
            break;
    }
    return done;
}

uint64_t KTIO_WriteData(KT_FILE *file, const void *buffer, uint64_t size)
{
    if (file == nullptr)
        return 0;
    uint64_t done = 0;
    while (done < size && buffer != nullptr) {
        const ssize_t count = write(file->descriptor, static_cast<const char *>(buffer) + done,
                                    std::min(size - done, longestTransfer));
        if (count > 0)
            done += static_cast<uint64_t>(count);
        else if (count == 0 || errno != EINTR)
            break;
    }
    file->written += static_cast<int64_t>(done);
    file->isLost = file->isLost || done < size;
    return done;
}

// Makes the new name last through a crash. The file is in its place already, so a failure here is none of the
// replacement.
static void flushFolder(char *path)
{
    char *end = std::strrchr(path, '/');
    end[end == path ? 1 : 0] = '\0';
    const int folder = openAgain(path, O_RDONLY | O_DIRECTORY);
    if (folder < 0)
        return;
    fsync(folder);
    close(folder);
}

bool KTIO_CloseFile(KT_FILE *file)
{
    if (file == nullptr)
        return false;
    bool done = true;
    if (file->target == nullptr) {
        close(file->descriptor);
    } else {
        const bool flushed = !file->isLost && fsync(file->descriptor) == 0;
        const bool closed = close(file->descriptor) == 0 || errno == EINTR;
        done = flushed && closed && rename(file->temporary, file->target) == 0;
        if (done)
            flushFolder(file->target);
        else
            unlink(file->temporary);
    }
    freeFile(file);
    return done;
}
