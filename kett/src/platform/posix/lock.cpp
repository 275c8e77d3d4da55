#include "platform/lock.h"

#include "platform/cancellation.h"

namespace kett
{

void lock(SystemLock &guard)
{
    pthread_mutex_lock(&guard.mutex);
    guard.holder.store(pthread_self(), std::memory_order_relaxed);
}

void unlock(SystemLock &guard)
{
    guard.holder.store(pthread_t{}, std::memory_order_relaxed);
    pthread_mutex_unlock(&guard.mutex);
}

void endLock(SystemLock &guard)
{
    pthread_mutex_destroy(&guard.mutex);
}

void waitFor(SystemCondition &condition, SystemLock &guard)
{
    // Whoever waits has its record in a queue, from which a cancellation would not take it.
    const Uncancelled whole;
    guard.holder.store(pthread_t{}, std::memory_order_relaxed);
    pthread_cond_wait(&condition.condition, &guard.mutex);
    guard.holder.store(pthread_self(), std::memory_order_relaxed);
}

void wake(SystemCondition &condition)
{
    pthread_cond_signal(&condition.condition);
}

void endCondition(SystemCondition &condition)
{
    pthread_cond_destroy(&condition.condition);
}

} // namespace kett
