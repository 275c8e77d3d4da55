#include "platform/lock.h"

namespace kett
{

void lock(SystemLock &guard)
{
    pthread_mutex_lock(&guard.mutex);
}

void unlock(SystemLock &guard)
{
    pthread_mutex_unlock(&guard.mutex);
}

void endLock(SystemLock &guard)
{
    pthread_mutex_destroy(&guard.mutex);
}

} // namespace kett
