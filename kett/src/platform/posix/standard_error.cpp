#include "platform/standard_error.h"

#include <cerrno>

#include <unistd.h>

namespace kett
{

void writeToStandardError(const char *text, size_t length)
{
    while (write(STDERR_FILENO, text, length) < 0 && errno == EINTR) {
    }
}

} // namespace kett
