#include "platform/standard_error.h"

#include "platform/windows/wide.h"

#include <cstdlib>

#include <windows.h>

namespace kett
{

void writeToStandardError(const char *text, size_t length)
{
    const HANDLE out = GetStdHandle(STD_ERROR_HANDLE);
    DWORD written = 0;
    DWORD mode = 0;
    // A console takes characters; whatever else the handle may be takes the bytes as they are, line feeds too.
    wchar_t *wide = GetConsoleMode(out, &mode) ? newWide(text) : nullptr;
    if (wide != nullptr)
        WriteConsoleW(out, wide, static_cast<DWORD>(lstrlenW(wide)), &written, nullptr);
    else
        WriteFile(out, text, static_cast<DWORD>(length), &written, nullptr);
    std::free(wide);
}

} // namespace kett
