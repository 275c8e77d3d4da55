// Text of the system, which is UTF-16, and ours, which is UTF-8.
#pragma once

namespace kett
{

// For free(); null when the text is not well formed or memory is out.
wchar_t *newWide(const char *text);
char *newNarrow(const wchar_t *text);

} // namespace kett
