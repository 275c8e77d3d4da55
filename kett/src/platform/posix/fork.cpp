// A child of fork has the memory of its parent, but of the threads only the one that forked. It finds the data of libkett
// whole and the locks free, so that all of libkett works in it.
#include "KTlock.h"

#include <iterator>

#include <pthread.h>

namespace kett
{

namespace
{

// Those that are held for a moment, so that a fork can wait for them. Nobody holds two of them at once, and who holds
// one waits at most for a thread that has ended and for the heap, which the C library closes for the fork only after these.
constexpr Data brief[] = {Data::sink,     Data::settings,    Data::environment,
                          Data::versions, Data::descriptors, Data::threads};

bool isTakenForFork[std::size(brief)] = {}; // each under its lock

bool isHeldByCaller(const SystemLock &guard)
{
    return guard.holder.load(std::memory_order_relaxed) == pthread_self();
}

// The caller holds one already if it forks in a signal handler that has interrupted it there.
void beforeFork()
{
    for (size_t i = 0; i < std::size(brief); ++i) {
        if (SystemLock &guard = lockOf(brief[i]); !isHeldByCaller(guard)) {
            lock(guard);
            isTakenForFork[i] = true;
        }
    }
}

void afterForkInParent()
{
    for (size_t i = 0; i < std::size(brief); ++i) {
        if (isTakenForFork[i]) {
            isTakenForFork[i] = false;
            unlock(lockOf(brief[i]));
        }
    }
}

// A sink that another thread runs in the parent is not running here. One that forks holds the lock here as well.
void afterForkInChild()
{
    afterForkInParent();
    SystemLock &log = lockOf(Data::log);
    if (isHeldByCaller(log))
        return;
    pthread_mutex_init(&log.mutex, nullptr);
    log.holder.store(pthread_t{}, std::memory_order_relaxed);
}

// Before anything else can hold a lock. The GNU C library drops the handlers when this library is unloaded.
__attribute__((constructor(101))) void load()
{
    pthread_atfork(beforeFork, afterForkInParent, afterForkInChild);
}

} // namespace

} // namespace kett
