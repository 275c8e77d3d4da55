#include "platform/module.h"

#include <windows.h>

// What is told at the end of the process, by a last argument that is not null: all threads but the calling one have been
// killed, wherever they were.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void *processEnds)
{
    if (reason == DLL_PROCESS_ATTACH)
        orva::onLoad();
    if (reason == DLL_PROCESS_DETACH && processEnds != nullptr)
        orva::onThreadsGone();
    if (reason == DLL_PROCESS_DETACH)
        orva::onUnload();
    return TRUE;
}
