// Paths: where a file that is written must end up, and whether it may.
#include "KTtext.h"
#include "platform/file.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kett
{

namespace
{

// Links from link to link, as the system counts them.
constexpr int mostLinks = 40;

// "a/b/c" has the folder "a/b/", "c" has none.
std::string_view folderOf(std::string_view path)
{
    return path.substr(0, path.rfind('/') + 1);
}

char *joined(std::string_view folder, std::string_view separator, std::string_view name)
{
    auto *path = static_cast<char *>(std::malloc(folder.size() + separator.size() + name.size() + 1));
    if (path == nullptr)
        return nullptr;
    char *end = path;
    for (const auto part : {folder, separator, name}) {
        end += part.copy(end, part.size());
    }
    *end = '\0';
    return path;
}

// The path of a file that is not there, in a folder that is.
char *resolvedNewFile(std::string_view path)
{
    const auto name = path.substr(folderOf(path).size());
    if (name.empty())
        return nullptr;
    char *given = folderOf(path).empty() ? copied(".") : copied(folderOf(path));
    char *folder = given != nullptr ? realpath(given, nullptr) : nullptr;
    std::free(given);
    if (folder == nullptr)
        return nullptr;
    const std::string_view resolved = folder;
    char *target = joined(resolved, resolved.ends_with('/') ? "" : "/", name);
    std::free(folder);
    return target;
}

// What the symbolic link `path` names, seen from where `path` is seen from; null if it is no link.
char *linkedPath(const char *path)
{
    char content[PATH_MAX];
    const ssize_t length = readlink(path, content, sizeof content);
    if (length <= 0 || length == sizeof content)
        return nullptr;
    const std::string_view linked(content, static_cast<size_t>(length));
    return joined(linked.starts_with('/') ? std::string_view() : folderOf(path), "", linked);
}

bool mayReplace(const char *target, const struct stat &old)
{
    if (faccessat(AT_FDCWD, target, W_OK, AT_EACCESS) != 0)
        return false;
    // In a folder with the sticky bit, only the owner of a file may put another in its place.
    char *folder = copied(folderOf(target));
    struct stat status;
    const bool isKnown = folder != nullptr && stat(folder, &status) == 0;
    std::free(folder);
    const uid_t user = geteuid();
    return isKnown &&
           ((status.st_mode & S_ISVTX) == 0 || user == 0 || user == old.st_uid || user == status.st_uid);
}

} // namespace

char *newTargetPath(const char *path)
{
    char *current = copied(path);
    char *target = current != nullptr ? realpath(current, nullptr) : nullptr;
    for (int i = 0; i < mostLinks && target == nullptr && current != nullptr && errno == ENOENT; ++i) {
        char *linked = linkedPath(current);
        if (linked == nullptr) {
            target = resolvedNewFile(current);
            break;
        }
        std::free(current);
        current = linked;
        target = realpath(current, nullptr);
    }
    std::free(current);
    return target;
}

Target lookAtTarget(const char *path, FileRights &rights)
{
    struct stat old;
    if (lstat(path, &old) != 0)
        return errno == ENOENT ? Target::absent : Target::refused;
    if (!S_ISREG(old.st_mode) || !mayReplace(path, old))
        return Target::refused;
    rights = {old.st_mode & 0777, old.st_uid, old.st_gid};
    return Target::replaceable;
}

} // namespace kett
