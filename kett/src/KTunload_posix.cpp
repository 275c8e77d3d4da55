#include <kett/KTmem.h>

#include "KTunload.h"

// Runs at dlclose and at the end of the process, after the destructors of all that depends on this library.
__attribute__((destructor)) static void onUnload()
{
    KTMEM_DisposeDisplayed(); // nobody could free them any more
    kett::discardThreads();
    kett::discardSettings();
    kett::discardEnvironment();
    kett::discardVersions();
}
