#include <kett/KTthread.h>

#include "KTlock.h"
#include "KTunload.h"
#include "platform/cancellation.h"
#include "platform/lock.h"
#include "platform/thread.h"

#include <cstdlib>
#include <new>

struct KT_THREAD {
    KT_THREAD *next;
    kett::SystemThread system;
    kett::SystemLock joinLock; // held while one joins, so that the others wait until it has
    bool isJoined;             // under joinLock
};

namespace kett
{

namespace
{

constinit KT_THREAD *threads = nullptr;

} // namespace

void discardThreads()
{
    const Hold hold(Data::threads);
    KT_THREAD **link = &threads;
    while (*link != nullptr) {
        KT_THREAD *thread = *link;
        if (!hasEnded(thread->system)) { // runs on while the process ends, and still needs its record
            link = &thread->next;
            continue;
        }
        KTTHREAD_JoinThreadEx(thread, 0);
        *link = thread->next;
        endLock(thread->joinLock);
        std::free(thread);
    }
}

} // namespace kett

using namespace kett;

KT_THREAD *KTTHREAD_AddThread(KTTHREAD_FUNCTION function, void *argument, int32_t)
{
    if (function == nullptr)
        return nullptr;
    void *room = std::calloc(1, sizeof(KT_THREAD));
    if (room == nullptr)
        return nullptr;
    auto *thread = new (room) KT_THREAD{};
    if (!startThread(thread->system, function, argument)) {
        endLock(thread->joinLock);
        std::free(room);
        return nullptr;
    }
    const Hold hold(Data::threads);
    thread->next = threads;
    threads = thread;
    return thread;
}

int32_t KTTHREAD_JoinThreadEx(KT_THREAD *thread, int32_t)
{
    if (thread == nullptr)
        return 0;
    if (isElsewhere(thread->system))
        return hasEnded(thread->system) ? 1 : 0;
    if (isCurrent(thread->system))
        return 0; // would wait for itself
    const Uncancelled whole;
    lock(thread->joinLock);
    if (!thread->isJoined)
        thread->isJoined = waitForEnd(thread->system);
    const bool isJoined = thread->isJoined;
    unlock(thread->joinLock);
    return isJoined ? 1 : 0;
}
