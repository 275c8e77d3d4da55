// The signals that end a process when it writes what cannot be written.
#pragma once

#include <signal.h>

namespace kett
{

// As long as it lives, a write of the calling thread fails where it would raise SIGPIPE or SIGXFSZ as well. Signals that
// others have raised before stay as they are.
class WithoutWriteSignals
{
public:
    WithoutWriteSignals();
    ~WithoutWriteSignals();

    WithoutWriteSignals(const WithoutWriteSignals &) = delete;
    WithoutWriteSignals &operator=(const WithoutWriteSignals &) = delete;

private:
    sigset_t maskBefore;
    sigset_t pendingBefore;
};

} // namespace kett
