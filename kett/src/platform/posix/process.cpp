#include "platform/process.h"

#include <unistd.h>

namespace kett
{

int64_t currentProcess()
{
    return getpid();
}

bool doesProcessEnd()
{
    return false;
}

} // namespace kett
