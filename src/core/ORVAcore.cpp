#include <orva/ORVAcore.h>

#include "core/ORVAversion_internal.h"

#include <kett/KTcore.h>
#include <kett/KTsettings.h>
#include <kett/KTversion.h>
#include <orva/ORVAfft.h>

namespace orva
{
namespace
{

// Uses of the library; zero or below means that it is down. Deliberately plain: load and unload are serialised by the
// loader, and hosts call from one thread at a time.
int32_t __IsInitialized = 0;

} // namespace
} // namespace orva

using namespace orva;

void ORVA_Initialize(void)
{
    if (__IsInitialized > 0) {
        ++__IsInitialized;
        return;
    }
    // Version and default go in before libkett's own start; hosts that watch the start rely on this order.
    KTVERSION_Register("liborva", versionMajor, versionMinor, versionRelease, versionBuild);
    KTSETTINGS_SetDefaultEx(nullptr, "orva.fftw.prepare_plans=%d", 0);
    KTCORE_Initialize();
    ORVA_InitializeFFT();
    __IsInitialized = 1; // not an increment: it heals a count that had gone below zero
}

void ORVA_Finalize(void)
{
    --__IsInitialized;
    if (__IsInitialized == 0) {
        ORVA_FinalizeFFT();
        KTCORE_Finalize();
    }
}
