#include <kett/KTmem.h>

#include "KTunload.h"

// Runs at dlclose and at the end of the process, after the destructors of all that depends on this library. Linked
// statically it stands in one list with them, where the lowest number that a program may take comes last.
__attribute__((destructor(101))) static void onUnload()
{
    if (kett::wereThreadsCaught())
        return;
    KTMEM_DisposeDisplayed(); // nobody could free them any more
    kett::discardThreads();
    kett::discardSettings();
    kett::discardEnvironment();
    kett::discardVersions();
}
