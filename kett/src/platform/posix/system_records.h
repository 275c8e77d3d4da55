// What is kept of a file, a lock and a thread of the system. Only this folder looks into them.
#pragma once

#include <kett/KTthread.h>

#include <atomic>

#include <pthread.h>
#include <sys/types.h>

namespace kett
{

struct SystemFile {
    int descriptor = -1;
};

struct SystemFolder {
    int descriptor = -1;
};

struct SystemLock {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    std::atomic<pthread_t> holder = pthread_t{}; // zero for nobody
};

struct SystemCondition {
    pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
};

struct SystemThread {
    KTTHREAD_FUNCTION function;
    void *argument;
    pid_t process;              // that it runs in
    pthread_t id;               // may belong to another thread once this one has been waited for
    std::atomic<bool> hasEnded; // the function has returned
};

} // namespace kett
