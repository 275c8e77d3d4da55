#include "platform/process.h"

#include <unistd.h>

namespace orva
{

int64_t currentProcess()
{
    return getpid();
}

} // namespace orva
