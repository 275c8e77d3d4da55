// Threads of the system. A SystemThread is zero before it is started and stays where it is.
#pragma once

#include "system_records.h"

#include <kett/KTthread.h>

namespace kett
{

// Starts `function` at once on a new thread, which blocks all signals; false when it cannot be started.
bool startThread(SystemThread &thread, KTTHREAD_FUNCTION function, void *argument);

// The function has returned.
bool hasEnded(const SystemThread &thread);

// The thread does not run in this process, though it may not have ended: a child of fork has the record of
// its parent's thread, but not the thread.
bool isElsewhere(const SystemThread &thread);

// The calling thread is the one of the record.
bool isCurrent(const SystemThread &thread);

// Blocks until the thread has ended, and gives back what the system keeps of it. Called until it succeeds
// once, by one thread at a time, and not for a thread that is elsewhere.
bool waitForEnd(SystemThread &thread);

} // namespace kett
