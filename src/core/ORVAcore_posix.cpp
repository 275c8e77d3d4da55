// Module entry on systems with ELF: one use is counted at load and taken away at unload.
#include <orva/ORVAcore.h>

__attribute__((constructor)) static void onLoad()
{
    ORVA_Initialize();
}

__attribute__((destructor)) static void onUnload()
{
    ORVA_Finalize();
}
