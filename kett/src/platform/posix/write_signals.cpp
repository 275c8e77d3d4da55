#include "write_signals.h"

#include <cerrno>

namespace kett
{

namespace
{

constexpr int writeSignals[] = {SIGPIPE, SIGXFSZ};

} // namespace

WithoutWriteSignals::WithoutWriteSignals()
{
    sigset_t both;
    sigemptyset(&both);
    for (const int signal : writeSignals)
        sigaddset(&both, signal);
    sigpending(&pendingBefore);
    pthread_sigmask(SIG_BLOCK, &both, &maskBefore);
}

// Both are sent to the thread that writes, at once; so what is pending now and was not before is ours.
WithoutWriteSignals::~WithoutWriteSignals()
{
    const int error = errno;
    for (const int signal : writeSignals) {
        if (sigismember(&pendingBefore, signal) != 0)
            continue;
        constexpr timespec now = {};
        sigset_t one;
        sigemptyset(&one);
        sigaddset(&one, signal);
        while (sigtimedwait(&one, nullptr, &now) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
    errno = error;
}

} // namespace kett
