// Locks, not recursive. A SystemLock is unlocked from its beginning and needs no set-up, so that one in static
// memory works from the first instant of a process to the last.
#pragma once

#include "system_records.h"

namespace kett
{

void lock(SystemLock &guard);
void unlock(SystemLock &guard);

// Gives back what the system keeps of an unlocked lock that nobody waits for.
void endLock(SystemLock &guard);

} // namespace kett
