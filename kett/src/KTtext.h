// Small operations on text, the same in every locale.
#pragma once

#include <cstdlib>
#include <string_view>

namespace kett
{

// A-Z to a-z; every other byte stays.
constexpr char toLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool equalInsensitive(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (toLower(a[i]) != toLower(b[i]))
            return false;
    return true;
}

// The six ASCII blanks.
constexpr bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// A null-terminated copy for free(), or null when memory is out.
inline char *copied(std::string_view text)
{
    auto *copy = static_cast<char *>(std::malloc(text.size() + 1));
    if (copy != nullptr) {
        text.copy(copy, text.size());
        copy[text.size()] = '\0';
    }
    return copy;
}

} // namespace kett
