// Paths: how the system takes them, and where a file that is written must end up. In this form a path begins with \\?\ and
// may have 32767 characters; the system follows it as it stands.
#include "platform/windows/path.h"

#include "platform/file.h"
#include "platform/windows/wide.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace kett
{

namespace
{

wchar_t *joined(std::wstring_view first, std::wstring_view second)
{
    auto *path = static_cast<wchar_t *>(std::malloc((first.size() + second.size() + 1) * sizeof(wchar_t)));
    if (path == nullptr)
        return nullptr;
    first.copy(path, first.size());
    second.copy(path + first.size(), second.size());
    path[first.size() + second.size()] = L'\0';
    return path;
}

// What a call gives that tells, for too little room, how much it wants. Null where it fails, and when memory is out.
template <class Call> wchar_t *newAnswer(Call call)
{
    wchar_t *answer = nullptr;
    for (DWORD room = 0;;) {
        const DWORD length = call(answer, room);
        if (length > 0 && length < room)
            return answer;
        std::free(answer);
        if (length == 0)
            return nullptr;
        room = length + 1; // the next answer may be longer still: folders move
        answer = static_cast<wchar_t *>(std::malloc(room * sizeof(wchar_t)));
        if (answer == nullptr)
            return nullptr;
    }
}

// C:\folder becomes \\?\C:\folder, and \\server\share becomes \\?\UNC\server\share.
wchar_t *newUnlimited(std::wstring_view absolute)
{
    if (absolute.starts_with(L"\\\\.\\"))
        return nullptr; // a device
    if (absolute.starts_with(L"\\\\?\\"))
        return joined(absolute, L"");
    if (absolute.starts_with(L"\\\\"))
        return joined(L"\\\\?\\UNC", absolute.substr(1));
    return joined(L"\\\\?\\", absolute);
}

// What stands at the path, links followed; null if nothing does.
wchar_t *newFinalPath(const wchar_t *path)
{
    const HANDLE file = CreateFileW(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    wchar_t *answer = newAnswer([&](wchar_t *room, DWORD size) {
        return GetFinalPathNameByHandleW(file, room, size, FILE_NAME_NORMALIZED);
    });
    CloseHandle(file);
    return answer != nullptr ? answer : joined(path, L""); // some file systems do not tell
}

// The folder at the path, links followed, with a separator at its end.
wchar_t *newFolderPath(const wchar_t *path)
{
    wchar_t *folder = newFinalPath(path);
    if (folder == nullptr)
        return nullptr;
    wchar_t *result = joined(folder, std::wstring_view(folder).ends_with(L'\\') ? L"" : L"\\");
    std::free(folder);
    return result;
}

} // namespace

wchar_t *newSystemPath(const char *path)
{
    wchar_t *wide = newWide(path);
    if (wide == nullptr)
        return nullptr;
    wchar_t *absolute =
        newAnswer([&](wchar_t *room, DWORD size) { return GetFullPathNameW(wide, size, room, nullptr); });
    wchar_t *result = absolute != nullptr ? newUnlimited(absolute) : nullptr;
    std::free(absolute);
    std::free(wide);
    return result;
}

// A folder is its path here. While a file in it is open it cannot be moved.
char *openFolderOf(SystemFolder &folder, const char *path)
{
    wchar_t *given = newSystemPath(path);
    if (given == nullptr)
        return nullptr;
    const std::wstring_view whole = given;
    const auto name = whole.substr(whole.rfind(L'\\') + 1);
    wchar_t *parent = !name.empty() ? joined(whole.substr(0, whole.size() - name.size()), L"") : nullptr;
    wchar_t *place = parent != nullptr ? newFolderPath(parent) : nullptr;
    folder.path = place != nullptr ? newNarrow(place) : nullptr;
    char *result = folder.path != nullptr ? newNarrow(name.data()) : nullptr;
    if (result == nullptr)
        closeFolder(folder);
    std::free(place);
    std::free(parent);
    std::free(given);
    return result;
}

void flushFolder(const SystemFolder &) {}

void closeFolder(SystemFolder &folder)
{
    std::free(folder.path);
    folder.path = nullptr;
}

wchar_t *newSystemPath(const SystemFolder &folder, const char *name)
{
    const size_t folderSize = std::strlen(folder.path);
    const size_t nameSize = std::strlen(name) + 1;
    auto *path = static_cast<char *>(std::malloc(folderSize + nameSize));
    if (path == nullptr)
        return nullptr;
    std::memcpy(path, folder.path, folderSize);
    std::memcpy(path + folderSize, name, nameSize);
    wchar_t *result = newSystemPath(path);
    std::free(path);
    return result;
}

} // namespace kett
