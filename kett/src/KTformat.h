// printf-style formatting to any length.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace kett
{

// vsnprintf() or one that is called like it.
using Formatter = int (*)(char *room, size_t size, const char *format, va_list arguments);

class FormattedText
{
public:
    FormattedText(Formatter formatter, const char *format, va_list arguments);
    ~FormattedText();

    FormattedText(const FormattedText &) = delete;
    FormattedText &operator=(const FormattedText &) = delete;

    const char *text;
    size_t length;

    // False: memory was out and the text is cut, or the formatter refused and the text is the format itself.
    bool isComplete;

private:
    char room[1024];
    char *allocated;
};

} // namespace kett
