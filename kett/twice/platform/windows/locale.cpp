#include "platform/locale.h"

#include <cstdio>
#include <locale.h>

// The C runtime of the system may have no locale of a thread's own. But the formatter is not the runtime's: it is linked in
// from MinGW-w64 and asks one function for the decimal sign, which the linker (--wrap) replaces by the one below. So all
// that this library formats has the point.
extern "C" lconv *__wrap_localeconv(void);

lconv *__wrap_localeconv(void)
{
    static char point[] = ".";
    static char none[] = "";
    static constinit lconv numbers = [] {
        lconv c = {};
        c.decimal_point = point;
        c.thousands_sep = none;
        c.grouping = none;
        return c;
    }();
    return &numbers;
}

namespace kett
{

int formatInCLocale(char *room, size_t size, const char *format, va_list arguments)
{
    return std::vsnprintf(room, size, format, arguments);
}

} // namespace kett
