// Where a file that is written must end up.
#pragma once

#include <sys/stat.h>

namespace kett
{

// The absolute path that `path` stands for, all symbolic links followed, also one that leads to a file not
// there yet. For free(); null when there is no such folder or memory is out.
char *resolvedTarget(const char *path);

// Tells whether the caller may write the file `target`, whose status is `old`, and put another one in its
// place.
bool mayReplace(const char *target, const struct stat &old);

} // namespace kett
