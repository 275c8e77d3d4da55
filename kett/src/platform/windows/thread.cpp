// A thread keeps the code that it runs: the modules of its function and of this library stay loaded until it leaves them.
// So no unloading ever has to wait for a thread that needs the loader's lock, which the unloading one holds, to begin or
// to end.
#include "platform/thread.h"

namespace kett
{

namespace
{

// The module in which an address stands, loaded until FreeLibrary; null where it is in none.
HMODULE holdModuleOf(const void *address)
{
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, static_cast<LPCWSTR>(address), &module))
        return nullptr;
    return module;
}

DWORD WINAPI run(void *argument)
{
    auto *thread = static_cast<SystemThread *>(argument);
    const HMODULE caller = thread->caller;
    const HMODULE self = thread->self;
    thread->function(thread->argument);
    thread->hasEnded.store(true);
    SetEvent(thread->ended);
    // The caller may be unloaded by this, in which it waits for the event above, which has come.
    if (caller != nullptr)
        FreeLibrary(caller);
    FreeLibraryAndExitThread(self, 0);
}

void release(SystemThread &thread)
{
    if (thread.caller != nullptr)
        FreeLibrary(thread.caller);
    if (thread.self != nullptr)
        FreeLibrary(thread.self);
    if (thread.ended != nullptr)
        CloseHandle(thread.ended);
}

} // namespace

bool startThread(SystemThread &thread, KTTHREAD_FUNCTION function, void *argument)
{
    thread.function = function;
    thread.argument = argument;
    thread.caller = holdModuleOf(reinterpret_cast<const void *>(function));
    thread.self = holdModuleOf(reinterpret_cast<const void *>(&run));
    thread.ended = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (thread.self != nullptr && thread.ended != nullptr)
        thread.handle = CreateThread(nullptr, 0, run, &thread, CREATE_SUSPENDED, &thread.id);
    if (thread.handle == nullptr) {
        release(thread);
        return false;
    }
    ResumeThread(thread.handle); // now that its record is complete
    return true;
}

bool hasEnded(const SystemThread &thread)
{
    return thread.hasEnded.load();
}

// There is no fork, but at the end of the process all threads but one have been killed.
bool isElsewhere(const SystemThread &thread)
{
    return !hasEnded(thread) && WaitForSingleObject(thread.handle, 0) == WAIT_OBJECT_0;
}

bool isCurrent(const SystemThread &thread)
{
    return !hasEnded(thread) && thread.id == GetCurrentThreadId();
}

bool waitForEnd(SystemThread &thread)
{
    const HANDLE either[] = {thread.ended, thread.handle}; // the latter alone after a thread that was killed
    WaitForMultipleObjects(2, either, FALSE, INFINITE);
    if (!hasEnded(thread))
        return false;
    CloseHandle(thread.ended);
    CloseHandle(thread.handle);
    return true;
}

} // namespace kett
