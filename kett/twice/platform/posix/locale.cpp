#include "platform/locale.h"

#include <cstdio>
#include <locale.h>

namespace kett
{

int formatInCLocale(char *room, size_t size, const char *format, va_list arguments)
{
    // All of it, not the numbers alone: the GNU C library keeps the whole C locale ready; for any other it loses a block
    // each time while LOCPATH is set.
    const locale_t plain = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    if (plain == static_cast<locale_t>(nullptr))
        return -1;
    const locale_t before = uselocale(plain);
    const int length = std::vsnprintf(room, size, format, arguments);
    uselocale(before);
    freelocale(plain);
    return length;
}

} // namespace kett
