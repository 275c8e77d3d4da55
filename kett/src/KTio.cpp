// Files that are read, and files that are written under a temporary name beside their target and put in its
// place when they are closed.
#include <kett/KTio.h>

#include "KTtext.h"
#include "platform/cancellation.h"
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
    char *target;    // name in the folder, null for a file that is read
    kett::SystemFolder folder;
    char temporary[64]; // name of what is written, beside the target
};

namespace kett
{

namespace
{

constexpr int64_t daySeconds = 86400;

// In bytes; less than the most that one system call takes.
constexpr uint64_t longestTransfer = uint64_t{1} << 30;

KT_FILE *newFile()
{
    void *room = std::calloc(1, sizeof(KT_FILE));
    return room != nullptr ? new (room) KT_FILE{} : nullptr;
}

void freeFile(KT_FILE *file)
{
    if (file->target != nullptr)
        closeFolder(file->folder);
    std::free(file->target);
    std::free(file);
}

// ".kett-<process>-<number>.tmp": short, whatever the target's name, so that it fits where that one does.
constexpr std::string_view temporaryStart = ".kett-";
constexpr std::string_view temporaryEnd = ".tmp";

bool isTemporaryName(std::string_view name)
{
    if (!name.starts_with(temporaryStart) || !name.ends_with(temporaryEnd))
        return false;
    name = name.substr(temporaryStart.size(), name.size() - temporaryStart.size() - temporaryEnd.size());
    const size_t dash = std::min(name.find('-'), name.size());
    constexpr std::string_view digits = "0123456789";
    const std::string_view process = name.substr(0, dash);
    const std::string_view number = name.substr(std::min(dash + 1, name.size()));
    return !process.empty() && !number.empty() && process.find_first_not_of(digits) == name.npos &&
           number.find_first_not_of(digits) == name.npos;
}

// Creates a file of a name not in use, in the folder of the target.
bool createTemporary(KT_FILE *file, bool isPrivate)
{
    static constinit std::atomic<uint32_t> counter{0};
    Creation creation;
    do {
        std::snprintf(file->temporary, sizeof file->temporary, "%s%lld-%lu%s", temporaryStart.data(),
                      static_cast<long long>(currentProcess()),
                      static_cast<unsigned long>(counter.fetch_add(1)), temporaryEnd.data());
        creation = createFile(file->system, file->folder, file->temporary, isPrivate);
    } while (creation == Creation::nameTaken);
    return creation == Creation::done;
}

bool openTarget(KT_FILE *file, const char *path)
{
    file->target = openFolderOf(file->folder, path);
    if (file->target == nullptr)
        return false;
    FileRights rights;
    const Target target = lookAtTarget(file->folder, file->target, rights);
    if (target == Target::refused || !createTemporary(file, target == Target::withRights))
        return false;
    if (target == Target::withoutRights || giveRights(file->system, rights))
        return true;
    closeFile(file->system);
    removeFile(file->folder, file->temporary);
    return false;
}

// Puts what was written in the target's place.
bool finish(KT_FILE *file)
{
    const bool isFlushed = !file->isLost && flushFile(file->system);
    const bool isClosed = closeFile(file->system);
    if (!isFlushed || !isClosed || !replaceFile(file->folder, file->temporary, file->target)) {
        removeFile(file->folder, file->temporary);
        return false;
    }
    // The file is in its place already, where a failure of these leaves it.
    flushFolder(file->folder);
    removeOldFiles(file->folder, isTemporaryName, daySeconds); // of processes that were killed
    return true;
}

} // namespace

} // namespace kett

using namespace kett;

bool KTIO_FileExists(const char *path)
{
    const Uncancelled whole;
    return path != nullptr && isFileAt(path);
}

KT_FILE *KTIO_Open(const char *path, const char *mode)
{
    if (path == nullptr || mode == nullptr)
        return nullptr;
    const bool reads = std::strcmp(mode, "r") == 0;
    if (!reads && std::strcmp(mode, "w") != 0)
        return nullptr;
    const Uncancelled whole;
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
    const Uncancelled whole;
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
    const Uncancelled whole;
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
    const Uncancelled whole;
    bool done = true;
    if (file->target == nullptr)
        closeFile(file->system);
    else
        done = finish(file);
    freeFile(file);
    return done;
}
