#include "platform/windows/wide.h"

#include <cstdlib>

#include <windows.h>

namespace kett
{

wchar_t *newWide(const char *text)
{
    const int size = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0);
    if (size <= 0)
        return nullptr;
    auto *wide = static_cast<wchar_t *>(std::malloc(static_cast<size_t>(size) * sizeof(wchar_t)));
    if (wide != nullptr)
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, wide, size);
    return wide;
}

char *newNarrow(const wchar_t *text)
{
    const int size =
        WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0)
        return nullptr;
    auto *narrow = static_cast<char *>(std::malloc(static_cast<size_t>(size)));
    if (narrow != nullptr)
        WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text, -1, narrow, size, nullptr, nullptr);
    return narrow;
}

} // namespace kett
