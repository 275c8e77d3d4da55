#include <kett/KTthread.h>

#include "KTlock.h"
#include "KTunload.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

struct KT_THREAD {
    KT_THREAD *next;
    KTTHREAD_FUNCTION function;
    void *argument;
    pid_t process;              // that it runs in
    pthread_t id;               // may belong to another thread once isJoined
    std::atomic<bool> hasEnded; // the function has returned
    pthread_mutex_t joinLock;   // held by the one that joins, so that the others wait as long
    bool isJoined;              // under joinLock
};

using kett::Data;
using kett::Hold;

static KT_THREAD *threads = nullptr;

static void *run(void *argument)
{
    auto *thread = static_cast<KT_THREAD *>(argument);
    thread->function(thread->argument);
    thread->hasEnded.store(true);
    return nullptr;
}

// The new thread inherits the mask of its creator.
static bool startWithSignalsBlocked(KT_THREAD *thread)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const bool started = pthread_create(&thread->id, nullptr, run, thread) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

KT_THREAD *KTTHREAD_AddThread(KTTHREAD_FUNCTION function, void *argument, int32_t)
{
    if (function == nullptr)
        return nullptr;
    void *room = std::calloc(1, sizeof(KT_THREAD));
    if (room == nullptr)
        return nullptr;
    auto *thread = new (room) KT_THREAD{};
    thread->function = function;
    thread->argument = argument;
    thread->process = getpid();
    pthread_mutex_init(&thread->joinLock, nullptr);
    if (!startWithSignalsBlocked(thread)) {
        pthread_mutex_destroy(&thread->joinLock);
        std::free(room);
        return nullptr;
    }
    const Hold hold(Data::threads);
    thread->next = threads;
    threads = thread;
    return thread;
}

// A child of fork has the records of its parent's threads, but not the threads.
static bool isElsewhere(const KT_THREAD *thread)
{
    return thread->process != getpid();
}

int32_t KTTHREAD_JoinThreadEx(KT_THREAD *thread, int32_t)
{
    if (thread == nullptr)
        return 0;
    if (isElsewhere(thread))
        return thread->hasEnded.load() ? 1 : 0;
    if (!thread->hasEnded.load() && pthread_equal(thread->id, pthread_self()))
        return 0; // would wait for itself
    pthread_mutex_lock(&thread->joinLock);
    if (!thread->isJoined)
        thread->isJoined = pthread_join(thread->id, nullptr) == 0;
    const bool isJoined = thread->isJoined;
    pthread_mutex_unlock(&thread->joinLock);
    return isJoined ? 1 : 0;
}

bool kett::wereThreadsCaught()
{
    for (const KT_THREAD *thread = threads; thread != nullptr; thread = thread->next)
        if (isElsewhere(thread) && !thread->hasEnded.load())
            return true;
    return false;
}

void kett::discardThreads()
{
    const Hold hold(Data::threads);
    KT_THREAD **link = &threads;
    while (*link != nullptr) {
        KT_THREAD *thread = *link;
        if (!thread->hasEnded.load()) { // runs on while the process ends, and still needs its record
            link = &thread->next;
            continue;
        }
        KTTHREAD_JoinThreadEx(thread, 0);
        *link = thread->next;
        pthread_mutex_destroy(&thread->joinLock);
        std::free(thread);
    }
}
