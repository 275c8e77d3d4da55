// Files that are read, and files that are written under a temporary name beside their target and put in its
// place when they are closed.
#include <kett/KTio.h>

#include "platform/file.h"
#include "platform/process.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

struct KT_FILE {
    kett::SystemFile system;
    bool isLost;     // a write was short
    int64_t written; // bytes
    char *target;    // path, null for a file that is read
    char *temporary; // path of what is written, beside the target
};

namespace kett
{

namespace
{

// In bytes; less than the most that one system call takes.
constexpr uint64_t longestTransfer = uint64_t{1} << 30;

KT_FILE *newFile()
{
    void *room = std::calloc(1, sizeof(KT_FILE));
    return room != nullptr ? new (room) KT_FILE{} : nullptr;
}

void freeFile(KT_FILE *file)
{
    std::free(file->target);
    std::free(file->temporary);
    std::free(file);
}

// The length of the folder's part of a target path, its last separator included.
size_t folderLength(const char *target)
{
    return static_cast<size_t>(std::strrchr(target, pathSeparator) + 1 - target);
}

// Creates a file of a name not in use, in the folder of the target.
bool createTemporary(KT_FILE *file, bool isPrivate)
{
    static constinit std::atomic<uint32_t> counter{0};
    const size_t folder = folderLength(file->target);
    const size_t size = folder + 64;
    file->temporary = static_cast<char *>(std::malloc(size));
    if (file->temporary == nullptr)
        return false;
    Creation creation;
    do {
        // Short, whatever the target's name, so that it fits where that one does.
        std::snprintf(file->temporary, size, "%.*s.kett-%lld-%lu.tmp", static_cast<int>(folder), file->target,
                      static_cast<long long>(currentProcess()),
                      static_cast<unsigned long>(counter.fetch_add(1)));
        creation = createFile(file->system, file->temporary, isPrivate);
    } while (creation == Creation::nameTaken);
    return creation == Creation::done;
}

bool openTarget(KT_FILE *file, const char *path)
{
    file->target = newTargetPath(path);
    if (file->target == nullptr)
        return false;
    FileRights rights;
    switch (lookAtTarget(file->target, rights)) {
    case Target::absent:
        return createTemporary(file, false);
    case Target::refused:
        return false;
    case Target::replaceable:
        break;
    }
    if (!createTemporary(file, true))
        return false;
    if (giveRights(file->system, rights))
        return true;
    closeFile(file->system);
    removeFile(file->temporary);
    return false;
}

// Puts what was written in the target's place.
bool finish(KT_FILE *file)
{
    const bool isFlushed = !file->isLost && flushFile(file->system);
    const bool isClosed = closeFile(file->system);
    if (!isFlushed || !isClosed || !replaceFile(file->temporary, file->target)) {
        removeFile(file->temporary);
        return false;
    }
    // The file is in its place already, where a failure of this leaves it.
    file->target[folderLength(file->target)] = '\0';
    flushFolder(file->target);
    return true;
}

} // namespace

} // namespace kett

using namespace kett;

bool KTIO_FileExists(const char *path)
{
    return path != nullptr && isFileAt(path);
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
    if (reads ? openToRead(file->system, path) : openTarget(file, path))
        return file;
    freeFile(file);
    return nullptr;
}

int64_t KTIO_FileSize(KT_FILE *file)
{
    if (file == nullptr)
        return 0;
    return file->target != nullptr ? file->written : sizeOf(file->system);
}

uint64_t KTIO_ReadData(KT_FILE *file, void *buffer, uint64_t size)
{
    if (file == nullptr || buffer == nullptr)
        return 0;
    uint64_t done = 0; // stays 0 where the system refuses, as in a file that is being written
    uint64_t count = 1;
    for (; done < size && count > 0; done += count)
        count = readSome(file->system, static_cast<char *>(buffer) + done,
                         std::min(size - done, longestTransfer));
    return done;
}

uint64_t KTIO_WriteData(KT_FILE *file, const void *buffer, uint64_t size)
{
    if (file == nullptr)
        return 0;
    uint64_t done = 0;
    uint64_t count = buffer != nullptr ? 1 : 0;
    for (; done < size && count > 0; done += count)
        count = writeSome(file->system, static_cast<const char *>(buffer) + done,
                          std::min(size - done, longestTransfer));
    file->written += static_cast<int64_t>(done);
    file->isLost = file->isLost || done < size;
    return done;
}

bool KTIO_CloseFile(KT_FILE *file)
{
    if (file == nullptr)
        return false;
    bool done = true;
    if (file->target == nullptr)
        closeFile(file->system);
    else
        done = finish(file);
    freeFile(file);
    return done;
}
