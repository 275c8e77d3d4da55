#include "platform/file.h"

#include "platform/windows/path.h"

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

// What may not be written, and a link that leads to nothing.
constexpr DWORD refusedAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_REPARSE_POINT;

// A file as CreateFileW() opens it; where it fails, GetLastError() tells why.
HANDLE openFile(const char *path, DWORD access, DWORD sharing, DWORD disposition, DWORD flags)
{
    wchar_t *systemPath = newSystemPath(path);
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
    file.handle =
        openFile(path, FILE_READ_ATTRIBUTES, shared, OPEN_EXISTING, 0); // which does not open a folder
    return file.handle != INVALID_HANDLE_VALUE && closeFile(file);
}

bool openToRead(SystemFile &file, const char *path)
{
    file.handle = openFile(path, GENERIC_READ, shared, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
    if (file.handle != INVALID_HANDLE_VALUE && GetFileType(file.handle) == FILE_TYPE_DISK)
        return true;
    if (file.handle != INVALID_HANDLE_VALUE)
        closeFile(file);
    return false;
}

Target lookAtTarget(const char *path, FileRights &rights)
{
    SystemFile file;
    file.handle = openFile(path, GENERIC_WRITE, shared, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT);
    if (file.handle == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_FILE_NOT_FOUND ? Target::absent : Target::refused;
    BY_HANDLE_FILE_INFORMATION status;
    const bool isFile = GetFileType(file.handle) == FILE_TYPE_DISK &&
                        GetFileInformationByHandle(file.handle, &status) &&
                        (status.dwFileAttributes & refusedAttributes) == 0;
    closeFile(file);
    if (!isFile)
        return Target::refused;
    rights = {status.dwFileAttributes & keptAttributes, 0, 0};
    return Target::replaceable;
}

// Who may do what with a file is told by its folder, also with a private one.
Creation createFile(SystemFile &file, const char *path, bool)
{
    file.handle =
        openFile(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
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

bool replaceFile(const char *from, const char *to)
{
    wchar_t *source = newSystemPath(from);
    wchar_t *target = newSystemPath(to);
    const bool isDone =
        source != nullptr && target != nullptr &&
        (renameAsPosixDoes(source, target) ||
         MoveFileExW(source, target, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE);
    std::free(target);
    std::free(source);
    return isDone;
}

void removeFile(const char *path)
{
    wchar_t *systemPath = newSystemPath(path);
    if (systemPath != nullptr)
        DeleteFileW(systemPath);
    std::free(systemPath);
}

void flushFolder(const char *) {}

} // namespace kett
