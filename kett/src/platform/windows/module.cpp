#include "platform/module.h"

#include "platform/windows/environment.h"

#include <windows.h>

// At the end of the process nothing is freed: a thread may have been killed in the middle of a change, and the system takes
// all back anyway.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void *processEnds)
{
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
        kett::onUnload();
        kett::discardSystemVariables();
    }
    return TRUE;
}
