#include "platform/lock.h"

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

} // namespace kett
