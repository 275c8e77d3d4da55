// The start and the stop of the life cycle and the FFT engine together, against a stand-in for libkett.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_recorder.h"
#include "platform/path.h"

#include <orva/ORVAcore.h>

#include <gtest/gtest.h>

using namespace orva;

using recorder::answers;
using recorder::takeCalls;
using Calls = std::vector<std::string>;

namespace
{

Calls startCalls()
{
    takeCalls();
    ORVA_Initialize();
    return takeCalls();
}

Calls stopCalls()
{
    takeCalls();
    ORVA_Finalize();
    return takeCalls();
}

const char *const registration = "register liborva 3.7.18.0";
const char *const setting = "default orva.fftw.prepare_plans=%d, 0";

} // namespace

TEST(Order, VersionAndDefaultThenLibkettThenTheEngine)
{
    EXPECT_EQ(startCalls(), (Calls{registration, setting, "libkett up", "make lock", "lock",
                                   "ask KT_DATA_PATH", "unlock"}));
}

TEST(Order, TheEngineStopsBeforeLibkett)
{
    ORVA_Initialize();
    EXPECT_EQ(stopCalls(), (Calls{"lock", "unlock", "destroy lock", "libkett down"}));
}

TEST(Order, ThePreparationIsJoinedBeforeTheLockGoes)
{
    ORVA_Initialize();
    ORVA_OptimizeFFT(false);
    EXPECT_EQ(stopCalls(), (Calls{"lock", "unlock", "join", "destroy lock", "libkett down"}));
}

TEST(Order, TheStoreIsWrittenBeforeTheLockGoes)
{
    answers.folder = [] { return "/folder"; };
    const std::string path = std::string("/folder") + pathSeparator + "ruko.optimization";
    ORVA_Initialize();
    const Calls calls = stopCalls();
    EXPECT_EQ(calls,
              (Calls{"lock", "unlock", "lock", "ask KT_DATA_PATH", "setting orva.fftw.use_wisdom=[1]",
                     "exists " + path, "open w " + path, "write " + std::to_string(answers.content.size()),
                     "close", "unlock", "destroy lock", "libkett down"}));
    EXPECT_FALSE(answers.content.empty());
}

TEST(Order, ARestartRunsTheWholeStartAndReadsNoStoreAgain)
{
    answers.folder = [] { return "/folder"; };
    ORVA_Initialize();
    ORVA_Finalize();
    EXPECT_EQ(startCalls(), (Calls{registration, setting, "libkett up", "make lock", "lock", "unlock"}));
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
