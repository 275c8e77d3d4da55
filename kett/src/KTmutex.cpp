// Mutexes that are handed on in the order in which they were asked for. The system gives a free lock to whoever comes first,
// which as a rule is the thread that has just released it, however long others have waited.
#include <kett/KTmutex.h>

#include "platform/lock.h"
#include "platform/process.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace kett
{

namespace
{

// On the stack of the thread that waits; its content is under the mutex's guard.
struct Waiter {
    Waiter *next = nullptr;
    SystemCondition turn;
    bool isTurn = false;
};

enum State : uint32_t { isFree, isHeld, isWaitedFor };

} // namespace

} // namespace kett

// Held and released in one atomic step while nobody waits. Under the guard a thread that must wait first makes the mutex
// one that is waited for; so its holder comes to the guard, too, to release it, and finds the thread in the queue.
struct KT_MUTEX {
    std::atomic<uint32_t> state{kett::isFree};
    kett::SystemLock guard;
    kett::Waiter *first = nullptr;
    kett::Waiter *last = nullptr; // while there is a first
};

namespace kett
{

namespace
{

bool change(KT_MUTEX *mutex, uint32_t from, uint32_t to)
{
    return mutex->state.compare_exchange_strong(from, to);
}

void lockInTurn(KT_MUTEX *mutex)
{
    lock(mutex->guard);
    if (mutex->state.exchange(isWaitedFor) == isFree) { // released meanwhile, so nobody is in the queue
        mutex->state.store(isHeld);
    } else {
        Waiter self;
        (mutex->first != nullptr ? mutex->last->next : mutex->first) = &self;
        mutex->last = &self;
        while (!self.isTurn)
            waitFor(self.turn, mutex->guard);
        endCondition(self.turn);
    }
    unlock(mutex->guard);
}

void handOn(KT_MUTEX *mutex)
{
    lock(mutex->guard);
    Waiter *next = mutex->first;
    mutex->first = next->next;
    if (mutex->first == nullptr)
        mutex->state.store(isHeld);
    next->isTurn = true;
    wake(next->turn); // before the guard is released, after which its record may be gone
    unlock(mutex->guard);
}

} // namespace

} // namespace kett

using namespace kett;

KT_MUTEX *MutexInit(void)
{
    void *room = std::calloc(1, sizeof(KT_MUTEX));
    return room != nullptr ? new (room) KT_MUTEX{} : nullptr;
}

void MutexLock(KT_MUTEX *mutex)
{
    if (mutex != nullptr && !change(mutex, isFree, isHeld) && !doesProcessEnd())
        lockInTurn(mutex);
}

void MutexUnlock(KT_MUTEX *mutex)
{
    if (mutex != nullptr && !change(mutex, isHeld, isFree) && !doesProcessEnd())
        handOn(mutex);
}

void MutexDestroy(KT_MUTEX *mutex)
{
    if (mutex == nullptr)
        return;
    endLock(mutex->guard);
    std::free(mutex);
}
