// Locks, not recursive, and what waits under one. A SystemLock is unlocked from its beginning and needs no set-up, so that
// one in static memory works from the first instant of a process to the last.
#pragma once

#include "system_records.h"

namespace kett
{

void lock(SystemLock &guard);
void unlock(SystemLock &guard);

// Gives back what the system keeps of an unlocked lock that nobody waits for.
void endLock(SystemLock &guard);

// Releases the lock until the condition is woken, or for no reason, and takes it again.
void waitFor(SystemCondition &condition, SystemLock &guard);

// Wakes the one thread that waits for the condition.
void wake(SystemCondition &condition);

void endCondition(SystemCondition &condition);

} // namespace kett
