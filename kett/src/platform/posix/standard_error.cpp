#include "platform/standard_error.h"

#include "write_signals.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kett
{

namespace
{

constexpr int64_t longestWaitMsec = 1000;

bool isStuck = false; // nobody has taken the last message

int64_t nowMsec()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

// Waits until there is room, or an error to be told, but not for ever.
bool waitForRoom(int64_t untilMsec)
{
    for (;;) {
        pollfd errorEnd = {STDERR_FILENO, POLLOUT, 0};
        const int64_t leftMsec = std::max(untilMsec - nowMsec(), int64_t{0});
        const int count = poll(&errorEnd, 1, static_cast<int>(leftMsec));
        if (count >= 0 || errno != EINTR)
            return count > 0;
    }
}

// Without a wait: EAGAIN where there is no room.
ssize_t writeAtOnce(const char *text, size_t length)
{
    struct stat status;
    if (fstat(STDERR_FILENO, &status) != 0)
        return -1;
    if (S_ISSOCK(status.st_mode))
        return send(STDERR_FILENO, text, length, MSG_DONTWAIT);
    if (!S_ISREG(status.st_mode) && !waitForRoom(0)) {
        errno = EAGAIN;
        return -1;
    }
    // A pipe that has room has it for so much.
    return write(STDERR_FILENO, text, S_ISFIFO(status.st_mode) ? std::min(length, size_t{PIPE_BUF}) : length);
}

} // namespace

// A pipe that nobody reads holds up one message for a second. That one is lost, and those after it are as well, without a
// wait, until there is room again.
void writeToStandardError(const char *text, size_t length)
{
    const WithoutWriteSignals held;
    const int64_t untilMsec = nowMsec() + (isStuck ? 0 : longestWaitMsec);
    do {
        const ssize_t count = writeAtOnce(text, length);
        if (count >= 0) {
            isStuck = false;
            text += count;
            length -= static_cast<size_t>(count);
        } else if (errno == EAGAIN) {
            isStuck = !waitForRoom(untilMsec);
            if (isStuck)
                return;
        } else if (errno != EINTR) {
            return;
        }
    } while (length > 0);
}

} // namespace kett
