// Locks, and the calls that wait.
#include "support/interposer_internal.h"

#include <kett/KTmutex.h>

#include <ctime>

#include <pthread.h>
#include <semaphore.h>
#include <unistd.h>

using namespace support::interposer;

template <auto *ours, class... Arguments> static auto lockCall(const char *name, Arguments... arguments)
{
    count(&support::Counts::lock);
    return next<ours>(name)(arguments...);
}

#pragma GCC visibility push(default)
extern "C" {

int pthread_mutex_lock(pthread_mutex_t *mutex) noexcept
{
    return lockCall<pthread_mutex_lock>("pthread_mutex_lock", mutex);
}

int pthread_mutex_trylock(pthread_mutex_t *mutex) noexcept
{
    return lockCall<pthread_mutex_trylock>("pthread_mutex_trylock", mutex);
}

int pthread_mutex_timedlock(pthread_mutex_t *mutex, const timespec *until) noexcept
{
    return lockCall<pthread_mutex_timedlock>("pthread_mutex_timedlock", mutex, until);
}

int pthread_mutex_unlock(pthread_mutex_t *mutex) noexcept
{
    return lockCall<pthread_mutex_unlock>("pthread_mutex_unlock", mutex);
}

int pthread_rwlock_rdlock(pthread_rwlock_t *lock) noexcept
{
    return lockCall<pthread_rwlock_rdlock>("pthread_rwlock_rdlock", lock);
}

int pthread_rwlock_wrlock(pthread_rwlock_t *lock) noexcept
{
    return lockCall<pthread_rwlock_wrlock>("pthread_rwlock_wrlock", lock);
}

int pthread_rwlock_unlock(pthread_rwlock_t *lock) noexcept
{
    return lockCall<pthread_rwlock_unlock>("pthread_rwlock_unlock", lock);
}

int pthread_spin_lock(pthread_spinlock_t *lock) noexcept
{
    return lockCall<pthread_spin_lock>("pthread_spin_lock", lock);
}

int pthread_spin_unlock(pthread_spinlock_t *lock) noexcept
{
    return lockCall<pthread_spin_unlock>("pthread_spin_unlock", lock);
}

int pthread_cond_wait(pthread_cond_t *condition, pthread_mutex_t *mutex)
{
    return lockCall<pthread_cond_wait>("pthread_cond_wait", condition, mutex);
}

int pthread_cond_timedwait(pthread_cond_t *condition, pthread_mutex_t *mutex, const timespec *until)
{
    return lockCall<pthread_cond_timedwait>("pthread_cond_timedwait", condition, mutex, until);
}

int pthread_cond_signal(pthread_cond_t *condition) noexcept
{
    return lockCall<pthread_cond_signal>("pthread_cond_signal", condition);
}

int pthread_cond_broadcast(pthread_cond_t *condition) noexcept
{
    return lockCall<pthread_cond_broadcast>("pthread_cond_broadcast", condition);
}

int pthread_once(pthread_once_t *once, void (*function)())
{
    return lockCall<pthread_once>("pthread_once", once, function);
}

int sem_wait(sem_t *semaphore)
{
    return lockCall<sem_wait>("sem_wait", semaphore);
}

int sem_trywait(sem_t *semaphore) noexcept
{
    return lockCall<sem_trywait>("sem_trywait", semaphore);
}

int sem_timedwait(sem_t *semaphore, const timespec *until)
{
    return lockCall<sem_timedwait>("sem_timedwait", semaphore, until);
}

int sem_post(sem_t *semaphore) noexcept
{
    return lockCall<sem_post>("sem_post", semaphore);
}

// What they ask of the system counts besides.
void MutexLock(KT_MUTEX *mutex)
{
    lockCall<MutexLock>("MutexLock", mutex);
}

void MutexUnlock(KT_MUTEX *mutex)
{
    lockCall<MutexUnlock>("MutexUnlock", mutex);
}

int pthread_join(pthread_t thread, void **result)
{
    return lockCall<pthread_join>("pthread_join", thread, result);
}

int nanosleep(const timespec *duration, timespec *left)
{
    return lockCall<nanosleep>("nanosleep", duration, left);
}

int clock_nanosleep(clockid_t clock, int flags, const timespec *duration, timespec *left)
{
    return lockCall<clock_nanosleep>("clock_nanosleep", clock, flags, duration, left);
}

int usleep(useconds_t microseconds)
{
    return lockCall<usleep>("usleep", microseconds);
}

} // extern "C"
#pragma GCC visibility pop
