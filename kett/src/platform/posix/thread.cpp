#include "platform/thread.h"

#include <signal.h>

#include <unistd.h>

namespace kett
{

namespace
{

void *run(void *argument)
{
    auto *thread = static_cast<SystemThread *>(argument);
    thread->function(thread->argument);
    thread->hasEnded.store(true);
    return nullptr;
}

} // namespace

bool startThread(SystemThread &thread, KTTHREAD_FUNCTION function, void *argument)
{
    thread.function = function;
    thread.argument = argument;
    thread.process = getpid();
    // The new thread inherits the mask of its creator.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const bool started = pthread_create(&thread.id, nullptr, run, &thread) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

bool hasEnded(const SystemThread &thread)
{
    return thread.hasEnded.load();
}

bool isElsewhere(const SystemThread &thread)
{
    return thread.process != getpid();
}

bool isCurrent(const SystemThread &thread)
{
    return !hasEnded(thread) && pthread_equal(thread.id, pthread_self()) != 0;
}

bool waitForEnd(SystemThread &thread)
{
    return pthread_join(thread.id, nullptr) == 0;
}

} // namespace kett
