#include "KTformat.h"

#include <cstdlib>
#include <cstring>

namespace kett
{

FormattedText::FormattedText(Formatter formatter, const char *format, va_list arguments)
    : text(room), length(0), isComplete(true), allocated(nullptr)
{
    va_list again;
    va_copy(again, arguments);
    const int wanted = formatter(room, sizeof room, format, arguments);
    if (wanted < 0) {
        text = format;
        length = std::strlen(format);
        isComplete = false;
    } else if (static_cast<size_t>(wanted) < sizeof room) {
        length = static_cast<size_t>(wanted);
    } else if ((allocated = static_cast<char *>(std::malloc(static_cast<size_t>(wanted) + 1))) == nullptr) {
        length = sizeof room - 1;
        isComplete = false;
    } else {
        formatter(allocated, static_cast<size_t>(wanted) + 1, format, again);
        text = allocated;
        length = static_cast<size_t>(wanted);
    }
    va_end(again);
}

FormattedText::~FormattedText()
{
    std::free(allocated);
}

} // namespace kett
