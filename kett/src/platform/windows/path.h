// Paths as the system takes them.
#pragma once

#include "system_records.h"

namespace kett
{

// The path as UTF-16, absolute and free of the limit on its length; for free(). Null for an empty path, the name of a
// device, a text that is not UTF-8, and when memory is out.
wchar_t *newSystemPath(const char *path);

// The same of a name in a folder.
wchar_t *newSystemPath(const SystemFolder &folder, const char *name);

} // namespace kett
