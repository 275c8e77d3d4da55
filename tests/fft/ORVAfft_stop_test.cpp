// A stop while plans take long.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_slow_planner.h"
#include "fft/ORVAfft_store.h"
#include "support/process.h"

#include <kett/KTsettings.h>

#include <chrono>
#include <thread>

using namespace orva;

using store::Store;
using support::inOwnProcess;

// The stop sets its flag under the planner's lock, for which the preparation asks again as soon as it has released it.
TEST(Preparation, AStopEndsItAtTheLengthThatItIsOn)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        KTSETTINGS_SetEx(nullptr, "orva.fftw.prepare_plans=%d", 1);
        ORVA_InitializeFFT();
        ORVA_OptimizeFFT(false);
        while (plans < 3)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        isStopping = true;
        ORVA_FinalizeFFT();
        EXPECT_EQ(plans, 4);
        EXPECT_TRUE(store.exists());
    });
}
