// Formatting under the C locale, whatever the host has set.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace kett
{

// vsnprintf() with the point as decimal sign. Below 0 also where memory is out.
int formatInCLocale(char *room, size_t size, const char *format, va_list arguments);

} // namespace kett
