// Module entry on systems with ELF: one use is counted at load and taken away at unload.
#include <orva/ORVAcore.h>

#include "fft/ORVAfft_internal.h"

__attribute__((constructor)) static void onLoad()
{
    ORVA_Initialize();
}

__attribute__((destructor)) static void onUnload()
{
    ORVA_Finalize();

    // A host that has counted more uses than it has taken away leaves the engine up, but takes our code away from
    // under a preparation. One that the engine has waited for already is joined at once.
    KTTHREAD_JoinThreadEx(__FFTW_InitThread, 0);
}
