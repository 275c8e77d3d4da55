#include "platform/lock.h"

#include "platform/process.h"

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

void waitFor(SystemCondition &condition, SystemLock &guard)
{
    SleepConditionVariableSRW(&condition.condition, &guard.lock, INFINITE, 0);
}

void wake(SystemCondition &condition)
{
    WakeConditionVariable(&condition.condition);
}

void endCondition(SystemCondition &) {}

} // namespace kett
