#include "filter/ORVAfilter_format.h"

#include "platform/locale.h"

#include <cstddef>
#include <cstdlib>

namespace orva
{
namespace
{

int formatInto(char *room, size_t size, const char *format, va_list arguments)
{
    va_list copy;
    va_copy(copy, arguments);
    const int length = kett::formatInCLocale(room, size, format, copy);
    va_end(copy);
    return length;
}

} // namespace

char *newFormattedText(const char *format, va_list arguments)
{
    constexpr size_t usualSize = 1024;
    auto *text = static_cast<char *>(std::malloc(usualSize));
    int length = text != nullptr ? formatInto(text, usualSize, format, arguments) : -1;
    if (length >= 0 && static_cast<size_t>(length) >= usualSize) {
        const auto size = static_cast<size_t>(length) + 1;
        auto *longer = static_cast<char *>(std::realloc(text, size));
        length = longer != nullptr ? formatInto(longer, size, format, arguments) : -1;
        text = longer != nullptr ? longer : text;
    }
    if (length >= 0)
        return text;
    std::free(text);
    return nullptr;
}

} // namespace orva
