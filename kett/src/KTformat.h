// printf-style formatting to any length.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace kett
{

// Formats under the locale in force.
class FormattedText
{
public:
    FormattedText(const char *format, va_list arguments);
    ~FormattedText();

    FormattedText(const FormattedText &) = delete;
    FormattedText &operator=(const FormattedText &) = delete;

    const char *text;
    size_t length;
    bool complete; // false: memory was out and the text is cut, or the format was refused and stands there
                   // unformatted

private:
    char room[1024];
    char *allocated;
};

} // namespace kett
