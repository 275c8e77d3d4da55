// What is kept of a file, a lock and a thread of the system. Only this folder looks into them.
#pragma once

#include <kett/KTthread.h>

#include <atomic>

#include <windows.h>

namespace kett
{

struct SystemFile {
    HANDLE handle = INVALID_HANDLE_VALUE;
};

struct SystemFolder {
    char *path = nullptr; // with a separator at its end
};

struct SystemLock {
    SRWLOCK lock = SRWLOCK_INIT;
};

struct SystemCondition {
    CONDITION_VARIABLE condition = CONDITION_VARIABLE_INIT;
};

struct SystemThread {
    KTTHREAD_FUNCTION function;
    void *argument;
    HMODULE caller;             // where the function stands; null for one that no module holds
    HMODULE self;               // this library
    HANDLE handle;              // signalled when the thread is gone, also when it was killed
    HANDLE ended;               // event: the function has returned
    DWORD id;                   // may belong to another thread once this one is gone
    std::atomic<bool> hasEnded; // the function has returned
};

} // namespace kett
