// The locks of libkett's own data. They need no set-up, so that every operation works from the first instant
// of a process to the last.
#pragma once

#include "platform/lock.h"

namespace kett
{

// The lock of `log` is held while a sink runs, which is the host's code and may take its time. The others are held for a
// moment, in which nothing of the host's runs.
enum class Data { log, sink, settings, environment, versions, descriptors, threads };

SystemLock &lockOf(Data data);

// Holds the lock of `data` as long as it lives.
class Hold
{
public:
    explicit Hold(Data data) : guard(lockOf(data))
    {
        lock(guard);
    }

    ~Hold()
    {
        unlock(guard);
    }

    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;

private:
    SystemLock &guard;
};

} // namespace kett
