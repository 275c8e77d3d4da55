// Linked statically, the module entry is one of many in the program's own lists, which the linker sorts by number. With
// these the library is up before the program's static objects are made and goes down after they are gone, as a shared
// library does, but before libkett, which has the lowest number that a program may take.
#include "platform/module.h"

#include <pthread.h>

namespace orva
{

namespace
{

__attribute__((constructor(102))) void load()
{
    // The GNU C library drops the handler when this library is unloaded.
    pthread_atfork(nullptr, nullptr, onThreadsGone);
    onLoad();
}

__attribute__((destructor(102))) void unload()
{
    onUnload();
}

} // namespace

} // namespace orva
