#include <kett/KTmutex.h>

#include "platform/lock.h"

#include <cstdlib>
#include <new>

struct KT_MUTEX {
    kett::SystemLock lock;
};

KT_MUTEX *MutexInit(void)
{
    void *room = std::calloc(1, sizeof(KT_MUTEX));
    return room != nullptr ? new (room) KT_MUTEX{} : nullptr;
}

void MutexLock(KT_MUTEX *mutex)
{
    if (mutex != nullptr)
        kett::lock(mutex->lock);
}

void MutexUnlock(KT_MUTEX *mutex)
{
    if (mutex != nullptr)
        kett::unlock(mutex->lock);
}

void MutexDestroy(KT_MUTEX *mutex)
{
    if (mutex == nullptr)
        return;
    kett::endLock(mutex->lock);
    std::free(mutex);
}
