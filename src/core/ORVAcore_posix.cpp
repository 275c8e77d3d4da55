// Module entry on systems with ELF: one use is counted at load and taken away at unload.
//
// Linked statically, it is one entry of many in the program's own lists, which the linker sorts by number. With these the
// library is up before the program's static objects are made and goes down after they are gone, as a shared library
// does, but before libkett, which has the lowest number that a program may take.
#include <orva/ORVAcore.h>

#include "fft/ORVAfft_internal.h"

__attribute__((constructor(102))) static void onLoad()
{
    ORVA_Initialize();
}

__attribute__((destructor(102))) static void onUnload()
{
    ORVA_Finalize();

    // A host that has counted more uses than it has taken away leaves the engine up, but takes our code away from
    // under a preparation. One that the engine has waited for already is joined at once.
    KTTHREAD_JoinThreadEx(__FFTW_InitThread, 0);
}
