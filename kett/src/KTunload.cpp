#include "KTunload.h"

#include "platform/module.h"

#include <kett/KTmem.h>

namespace kett
{

void onUnload()
{
    KTMEM_DisposeDisplayed(); // nobody could free them any more
    discardThreads();
    discardSettings();
    discardEnvironment();
    discardVersions();
}

} // namespace kett
