#include "platform/environment.h"

#include <stdlib.h>

namespace kett
{

const char *findSystemVariable(const char *name)
{
    // Null in a program with raised rights, such as a set-user-ID one, whose environment is another user's.
    return secure_getenv(name);
}

} // namespace kett
