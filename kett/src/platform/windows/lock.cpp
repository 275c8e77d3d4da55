#include "platform/lock.h"

#include "platform/windows/process_end.h"

namespace kett
{

// While the process ends one thread is left, and none that was killed with a lock in its hands will ever give it back: so
// nothing is locked any more.

void lock(SystemLock &guard)
{
    if (!doesProcessEnd())
        AcquireSRWLockExclusive(&guard.lock);
}

void unlock(SystemLock &guard)
{
    if (!doesProcessEnd())
        ReleaseSRWLockExclusive(&guard.lock);
}

void endLock(SystemLock &) {}

} // namespace kett
