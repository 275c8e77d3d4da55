#include "platform/file.h"

#include "platform/windows/path.h"
#include "platform/windows/wide.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace kett
{

namespace
{

// Others may do with a file what they like while we have it open, also put another in its place.
constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// What the user sees of a file, and may have chosen.
constexpr DWORD keptAttributes =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

// What may not be written, and links, wherever they lead.
constexpr DWORD refusedAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_REPARSE_POINT;

constexpr int64_t ticksPerSecond = 10'000'000;

int64_t ticksOf(FILETIME time)
{
    return static_cast<int64_t>(uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

// A file as CreateFileW() opens it, whose path is freed; where it fails, GetLastError() tells why.
HANDLE openFile(wchar_t *systemPath, DWORD access, DWORD sharing, DWORD disposition, DWORD flags)
{
    if (systemPath == nullptr) {
        SetLastError(ERROR_BAD_PATHNAME);
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE handle = CreateFileW(systemPath, access, sharing, nullptr, disposition, flags, nullptr);
    const DWORD error = GetLastError();
    std::free(systemPath);
    SetLastError(error);
    return handle;
}

// In one step, also where others have the target open, who read on in the old file. Windows 10 knows it, on its own kind
// of file system.
bool renameAsPosixDoes(const wchar_t *from, const wchar_t *to)
{
    constexpr auto renameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22); // MinGW-w64 10 hides its name
    const size_t bytes = std::wcslen(to) * sizeof(wchar_t);
    const size_t size = sizeof(FILE_RENAME_INFO) + bytes;
    auto *info = static_cast<FILE_RENAME_INFO *>(std::calloc(1, size));
    if (info == nullptr)
        return false;
    info->Flags = FILE_RENAME_FLAG_REPLACE_IF_EXISTS | FILE_RENAME_FLAG_POSIX_SEMANTICS;
    info->FileNameLength = static_cast<DWORD>(bytes);
    std::memcpy(info->FileName, to, bytes);
    const HANDLE file = CreateFileW(from, DELETE | SYNCHRONIZE, shared, nullptr, OPEN_EXISTING, 0, nullptr);
    bool isDone = false;
    if (file != INVALID_HANDLE_VALUE) {
        isDone = SetFileInformationByHandle(file, renameInfoEx, info, static_cast<DWORD>(size)) != FALSE;
        CloseHandle(file);
    }
    std::free(info);
    return isDone;
}

} // namespace

bool isFileAt(const char *path)
{
    SystemFile file;
    file.handle = openFile(newSystemPath(path), FILE_READ_ATTRIBUTES, shared, OPEN_EXISTING,
                           0); // which does not open a folder
    return file.handle != INVALID_HANDLE_VALUE && closeFile(file);
}

bool openToRead(SystemFile &file, const char *path)
{
    file.handle =
        openFile(newSystemPath(path), GENERIC_READ, shared, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
    if (file.handle != INVALID_HANDLE_VALUE && GetFileType(file.handle) == FILE_TYPE_DISK)
        return true;
    if (file.handle != INVALID_HANDLE_VALUE)
        closeFile(file);
    return false;
}

Target lookAtTarget(const SystemFolder &folder, const char *name, FileRights &rights)
{
    SystemFile file;
    file.handle = openFile(newSystemPath(folder, name), GENERIC_WRITE, shared, OPEN_EXISTING,
                           FILE_FLAG_OPEN_REPARSE_POINT);
    if (file.handle == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_FILE_NOT_FOUND ? Target::withoutRights : Target::refused;
    BY_HANDLE_FILE_INFORMATION status;
    const bool isFile = GetFileType(file.handle) == FILE_TYPE_DISK &&
                        GetFileInformationByHandle(file.handle, &status) &&
                        (status.dwFileAttributes & refusedAttributes) == 0;
    closeFile(file);
    if (!isFile)
        return Target::refused;
    rights = {status.dwFileAttributes & keptAttributes, 0, 0};
    return Target::withRights;
}

// Who may do what with a file is told by its folder, also with a private one.
Creation createFile(SystemFile &file, const SystemFolder &folder, const char *name, bool)
{
    file.handle = openFile(newSystemPath(folder, name), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                           CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
    if (file.handle != INVALID_HANDLE_VALUE)
        return Creation::done;
    return GetLastError() == ERROR_FILE_EXISTS ? Creation::nameTaken : Creation::refused;
}

bool giveRights(SystemFile &file, const FileRights &rights)
{
    FILE_BASIC_INFO info = {}; // a time of zero stays as it is, attributes of zero do, too
    info.FileAttributes = rights.mode;
    return SetFileInformationByHandle(file.handle, FileBasicInfo, &info, sizeof info) != FALSE;
}

int64_t sizeOf(const SystemFile &file)
{
    LARGE_INTEGER size;
    return GetFileSizeEx(file.handle, &size) ? size.QuadPart : 0;
}

uint64_t readSome(SystemFile &file, void *buffer, uint64_t size)
{
    DWORD count = 0;
    return ReadFile(file.handle, buffer, static_cast<DWORD>(size), &count, nullptr) ? count : 0;
}

uint64_t writeSome(SystemFile &file, const void *buffer, uint64_t size)
{
    DWORD count = 0;
    return WriteFile(file.handle, buffer, static_cast<DWORD>(size), &count, nullptr) ? count : 0;
}

bool flushFile(SystemFile &file)
{
    return FlushFileBuffers(file.handle) != FALSE;
}

bool closeFile(SystemFile &file)
{
    const bool isClosed = CloseHandle(file.handle) != FALSE;
    file.handle = INVALID_HANDLE_VALUE;
    return isClosed;
}

bool replaceFile(const SystemFolder &folder, const char *from, const char *to)
{
    wchar_t *source = newSystemPath(folder, from);
    wchar_t *target = newSystemPath(folder, to);
    const bool isDone =
        source != nullptr && target != nullptr &&
        (renameAsPosixDoes(source, target) ||
         MoveFileExW(source, target, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE);
    std::free(target);
    std::free(source);
    return isDone;
}

void removeFile(const SystemFolder &folder, const char *name)
{
    wchar_t *systemPath = newSystemPath(folder, name);
    if (systemPath != nullptr)
        DeleteFileW(systemPath);
    std::free(systemPath);
}

// Who may remove what is told by the folder, whoever has made it.
void removeOldFiles(const SystemFolder &folder, bool (*isSuchName)(std::string_view name), int64_t seconds)
{
    wchar_t *all = newSystemPath(folder, "*");
    WIN32_FIND_DATAW entry;
    const HANDLE names = all != nullptr ? FindFirstFileW(all, &entry) : INVALID_HANDLE_VALUE;
    std::free(all);
    if (names == INVALID_HANDLE_VALUE)
        return;
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    do {
        char *name = newNarrow(entry.cFileName);
        if (name != nullptr && isSuchName(name) &&
            (entry.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) == 0 &&
            ticksOf(now) - ticksOf(entry.ftLastWriteTime) > seconds * ticksPerSecond)
            removeFile(folder, name);
        std::free(name);
    } while (FindNextFileW(names, &entry));
    FindClose(names);
}

} // namespace kett
