#include <kett/KTmutex.h>

#include "KTlock.h"

#include <cstdlib>
#include <pthread.h>

struct KT_MUTEX {
    pthread_mutex_t mutex;
};

KT_MUTEX *MutexInit(void)
{
    auto *mutex = static_cast<KT_MUTEX *>(std::calloc(1, sizeof(KT_MUTEX)));
    if (mutex != nullptr && pthread_mutex_init(&mutex->mutex, nullptr) != 0) {
        std::free(mutex);
        return nullptr;
    }
    return mutex;
}

void MutexLock(KT_MUTEX *mutex)
{
    if (mutex != nullptr)
        pthread_mutex_lock(&mutex->mutex);
}

void MutexUnlock(KT_MUTEX *mutex)
{
    if (mutex != nullptr)
        pthread_mutex_unlock(&mutex->mutex);
}

void MutexDestroy(KT_MUTEX *mutex)
{
    if (mutex == nullptr)
        return;
    pthread_mutex_destroy(&mutex->mutex);
    std::free(mutex);
}

namespace kett
{

// One for each value of Data.
static pthread_mutex_t locks[] = {PTHREAD_MUTEX_INITIALIZER, PTHREAD_MUTEX_INITIALIZER,
                                  PTHREAD_MUTEX_INITIALIZER, PTHREAD_MUTEX_INITIALIZER,
                                  PTHREAD_MUTEX_INITIALIZER, PTHREAD_MUTEX_INITIALIZER};
static_assert(sizeof locks / sizeof locks[0] == static_cast<int>(Data::threads) + 1);

void lock(Data data)
{
    pthread_mutex_lock(&locks[static_cast<int>(data)]);
}

void unlock(Data data)
{
    pthread_mutex_unlock(&locks[static_cast<int>(data)]);
}

} // namespace kett
