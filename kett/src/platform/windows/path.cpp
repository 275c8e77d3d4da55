// Paths: how the system takes them, and where a file that is written must end up. In this form a path begins with \\?\ and
// may have 32767 characters; the system follows it as it stands.
#include "platform/windows/path.h"

#include "platform/file.h"
#include "platform/windows/wide.h"

#include <cstdlib>
#include <string_view>

namespace kett
{

const char pathSeparator = '\\';

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

// The path of a file that is not there, in a folder that is.
wchar_t *newPathInFolder(std::wstring_view path)
{
    const size_t separator = path.rfind(L'\\');
    const auto name = path.substr(separator + 1);
    wchar_t *given = !name.empty() ? joined(path.substr(0, separator + 1), L"") : nullptr;
    wchar_t *folder = given != nullptr ? newFinalPath(given) : nullptr;
    wchar_t *parent = nullptr;
    if (folder != nullptr)
        parent = joined(folder, std::wstring_view(folder).ends_with(L'\\') ? L"" : L"\\");
    wchar_t *target = parent != nullptr ? joined(parent, name) : nullptr;
    std::free(parent);
    std::free(folder);
    std::free(given);
    return target;
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

char *newTargetPath(const char *path)
{
    wchar_t *given = newSystemPath(path);
    if (given == nullptr)
        return nullptr;
    wchar_t *target = newFinalPath(given);
    if (target == nullptr)
        target = newPathInFolder(given);
    char *result = target != nullptr ? newNarrow(target) : nullptr;
    std::free(target);
    std::free(given);
    return result;
}

} // namespace kett
