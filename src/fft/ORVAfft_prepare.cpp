// The preparation of plans on a thread of its own. The plans are thrown away at once: what stays is the
// wisdom.
#include "fft/ORVAfft_internal.h"

#include <kett/KTdebug.h>
#include <kett/KTenv.h>
#include <kett/KTsettings.h>
#include <kett/KTutils.h>

namespace orva
{
namespace
{

constexpr int32_t __FFTWInitLen[11] = {16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384};

const char *dataFolder()
{
    return KTENV_GetEnvValue("KT_DATA_PATH");
}

// A host may name the folder a moment after it has asked for the preparation.
bool waitForFolder()
{
    constexpr int32_t pauseMsec = 50;
    KTUTILS_sleep_msec(pauseMsec);
    const char *folder = dataFolder();
    for (int pauses = 0; pauses < 5 && folder == nullptr; ++pauses) {
        KTUTILS_sleep_msec(pauseMsec);
        folder = dataFolder();
    }
    return dataFolder() != nullptr;
}

} // namespace

int32_t __InitializeFFTWPlans(void *)
{
    if (!waitForFolder()) {
        KTDEBUG_Warning(-1, "__InitializeFFTWPlans: KT_DATA_PATH not set!");
        return false;
    }
    __FFTW_LoadWisdom();
    if (!KTSETTINGS_GetBoolEx(nullptr, "orva.fftw.prepare_plans=[0]"))
        return true;
    for (const int32_t length : __FFTWInitLen) {
        if (length <= KTSETTINGS_GetIntEx(nullptr, "orva.fftw.max_plan_len=[4096]")) {
            ORVA_FFTProcDestroy(__FFTW_CreatePlan(length, false));
            ORVA_FFTProcDestroy(__FFTW_CreatePlan(length, true));
        }
        if (__FFTW_StopOptimization.load(std::memory_order_relaxed))
            break;
    }
    __FFTW_SaveWisdom();
    return true;
}

} // namespace orva
