// Text of the system, which is UTF-16, and ours, which is UTF-8.
#pragma once

#include <string>

#include <windows.h>

namespace support
{

inline std::wstring wide(const std::string &text)
{
    std::wstring result(text.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                           result.data(), static_cast<int>(result.size()));
    result.resize(static_cast<size_t>(length));
    return result;
}

inline std::string narrow(const std::wstring &text)
{
    std::string result(3 * text.size(), '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                           result.data(), static_cast<int>(result.size()), nullptr, nullptr);
    result.resize(static_cast<size_t>(length));
    return result;
}

} // namespace support
