#include "platform/environment.h"

#include <cstdlib>

namespace kett
{

const char *findSystemVariable(const char *name)
{
    return std::getenv(name);
}

} // namespace kett
