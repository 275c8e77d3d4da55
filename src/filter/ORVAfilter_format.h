// The expansion of a printf-style text.
#pragma once

#include <cstdarg>

namespace orva
{

// The text, for free(), formatted in the C locale, with the point as decimal sign; null when it cannot be formatted or
// memory is out.
char *newFormattedText(const char *format, va_list arguments);

} // namespace orva
