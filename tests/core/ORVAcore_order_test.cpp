// The start and the stop of the life cycle and the FFT engine together, against a stand-in for libkett.
#include "fft/ORVAfft_internal.h"
#include "kett_recorder.h"

#include <gtest/gtest.h>
#include <orva/ORVAcore.h>
#include <orva/ORVAfft.h>

using recorder::calls;
using Calls = std::vector<std::string>;

namespace
{

Calls startCalls()
{
    calls.clear();
    ORVA_Initialize();
    return calls;
}

Calls stopCalls()
{
    calls.clear();
    ORVA_Finalize();
    return calls;
}

} // namespace

TEST(Order, VersionAndDefaultThenLibkettThenTheEngine)
{
    const Calls expected = {
        "KTVERSION_Register liborva 3 7 18 0",
        "KTSETTINGS_SetDefaultEx null orva.fftw.prepare_plans=%d 0",
        "KTCORE_Initialize",
        "MutexInit",
        "MutexLock",
        "KTENV_GetEnvValue KT_DATA_PATH",
        "MutexUnlock",
    };
    EXPECT_EQ(startCalls(), expected);
}

TEST(Order, TheEngineStopsBeforeLibkett)
{
    ORVA_Initialize();
    EXPECT_EQ(stopCalls(), (Calls{"MutexLock", "MutexUnlock", "MutexDestroy", "KTCORE_Finalize"}));
}

TEST(Order, ThePreparationIsJoinedBeforeTheLockGoes)
{
    ORVA_Initialize();
    ORVA_OptimizeFFT(false);
    EXPECT_EQ(stopCalls(), (Calls{"MutexLock", "MutexUnlock", "KTTHREAD_JoinThreadEx", "MutexDestroy",
                                  "KTCORE_Finalize"}));
}

TEST(Order, TheStoreIsWrittenBeforeTheLockGoes)
{
    recorder::dataPath = "/folder";
    ORVA_Initialize();
    const Calls expected = {
        "MutexLock",
        "MutexUnlock",
        "MutexLock",
        "KTENV_GetEnvValue KT_DATA_PATH",
        "KTSETTINGS_GetBoolEx orva.fftw.use_wisdom=[1]",
        "KTIO_FileExists /folder/ruko.optimization",
        "KTIO_Open /folder/ruko.optimization w",
        "KTIO_WriteData",
        "KTIO_CloseFile",
        "MutexUnlock",
        "MutexDestroy",
        "KTCORE_Finalize",
    };
    EXPECT_EQ(stopCalls(), expected);
}

TEST(Order, ARestartRunsTheWholeStartAndReadsNoStoreAgain)
{
    recorder::dataPath = "/folder";
    ORVA_Initialize();
    ORVA_Finalize();
    const Calls expected = {
        "KTVERSION_Register liborva 3 7 18 0",
        "KTSETTINGS_SetDefaultEx null orva.fftw.prepare_plans=%d 0",
        "KTCORE_Initialize",
        "MutexInit",
        "MutexLock",
        "MutexUnlock",
    };
    EXPECT_EQ(startCalls(), expected);
}

TEST(Order, TheStopFlagOfThePreparationOutlivesARestart)
{
    ORVA_Initialize();
    EXPECT_FALSE(__FFTW_StopOptimization);
    ORVA_Finalize();
    EXPECT_TRUE(__FFTW_StopOptimization);
    ORVA_Initialize();
    EXPECT_TRUE(__FFTW_StopOptimization);
}
