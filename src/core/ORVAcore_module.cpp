// Module entry: one use is counted at load and taken away at unload. A child of fork has the count of its parent.
#include "fft/ORVAfft_internal.h"
#include "platform/module.h"

#include <orva/ORVAcore.h>

namespace orva
{

void onLoad()
{
    ORVA_Initialize();
}

void onThreadsGone()
{
    leaveOutAbsentThreads();
}

void onUnload()
{
    ORVA_Finalize();

    // A host that has counted more uses than it has taken away leaves the engine up, but takes our code away from
    // under a preparation. One that the engine has waited for already is joined at once.
    KTTHREAD_JoinThreadEx(__FFTW_InitThread, 0);
}

} // namespace orva
