// The expansion of a printf-style text.
#pragma once

#include <cstdarg>

// The text, for free(), with the point as decimal sign whatever the host's locale; null when it cannot be formatted or
// memory is out.
char *newFormattedText(const char *format, va_list arguments);
