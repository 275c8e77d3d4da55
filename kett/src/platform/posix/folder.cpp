// Folders, and the names in them. A folder is opened as a place only, which takes no right to list it.
#include "KTtext.h"
#include "files.h"
#include "platform/file.h"

#include <cstdio>
#include <ctime>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kett
{

namespace
{

// In a folder with the sticky bit, only the owner of a file may put another in its place.
bool mayReplace(const SystemFolder &folder, const struct stat &old)
{
    struct stat status;
    if (fstat(folder.descriptor, &status) != 0)
        return false;
    const uid_t user = geteuid();
    return (status.st_mode & S_ISVTX) == 0 || user == 0 || user == old.st_uid || user == status.st_uid;
}

// The same folder to be listed or flushed; below 0 where the caller may not.
int openToList(const SystemFolder &folder)
{
    return openUninterrupted(folder.descriptor, ".", O_RDONLY | O_DIRECTORY);
}

} // namespace

char *openFolderOf(SystemFolder &folder, const char *path)
{
    const std::string_view whole = path;
    const size_t nameStart = whole.rfind('/') + 1;
    if (nameStart == whole.size())
        return nullptr;
    char *name = copied(whole.substr(nameStart));
    char *place = copied(nameStart > 0 ? whole.substr(0, nameStart) : ".");
    if (name != nullptr && place != nullptr)
        folder.descriptor = openUninterrupted(AT_FDCWD, place, O_PATH | O_DIRECTORY);
    std::free(place);
    if (folder.descriptor >= 0)
        return name;
    std::free(name);
    return nullptr;
}

void flushFolder(const SystemFolder &folder)
{
    const int list = openToList(folder);
    if (list < 0)
        return;
    fsync(list);
    close(list);
}

void closeFolder(SystemFolder &folder)
{
    close(folder.descriptor);
    folder.descriptor = -1;
}

Target lookAtTarget(const SystemFolder &folder, const char *name, FileRights &rights)
{
    struct stat old;
    if (fstatat(folder.descriptor, name, &old, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT ? Target::withoutRights : Target::refused;
    if (!mayReplace(folder, old))
        return Target::refused;
    if (S_ISLNK(old.st_mode))
        return Target::withoutRights;
    if (!S_ISREG(old.st_mode) || faccessat(folder.descriptor, name, W_OK, AT_EACCESS) != 0)
        return Target::refused;
    rights = {old.st_mode & 0777, old.st_uid, old.st_gid};
    return Target::withRights;
}

bool replaceFile(const SystemFolder &folder, const char *from, const char *to)
{
    return renameat(folder.descriptor, from, folder.descriptor, to) == 0;
}

void removeFile(const SystemFolder &folder, const char *name)
{
    unlinkat(folder.descriptor, name, 0);
}

void removeOldFiles(const SystemFolder &folder, bool (*isSuchName)(std::string_view name), int64_t seconds)
{
    const int list = openToList(folder);
    DIR *names = list >= 0 ? fdopendir(list) : nullptr;
    if (names == nullptr) {
        if (list >= 0)
            close(list);
        return;
    }
    const time_t now = std::time(nullptr);
    while (const dirent *entry = readdir(names)) {
        struct stat status;
        if (isSuchName(entry->d_name) &&
            fstatat(folder.descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(status.st_mode) && status.st_uid == geteuid() && now - status.st_mtime > seconds)
            removeFile(folder, entry->d_name);
    }
    closedir(names);
}

} // namespace kett
