// The engine called by several threads at once; the thread sanitizer looks on in its build.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_reference.h"
#include "fft/ORVAfft_store.h"
#include "support/process.h"
#include "support/random.h"

#include <kett/KTsettings.h>

#include <chrono>
#include <thread>

using namespace orva;

using store::Store;
using support::inOwnProcess;

namespace
{

void prepareUpTo(int32_t longest)
{
    KTSETTINGS_SetEx(nullptr, "orva.fftw.prepare_plans=%d", 1);
    KTSETTINGS_SetEx(nullptr, "orva.fftw.max_plan_len=%d", longest);
}

} // namespace

TEST(EngineThreads, PlansComeAndGoWhileOthersArePrepared)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        prepareUpTo(4096);
        ORVA_InitializeFFT();
        ORVA_OptimizeFFT(false);
        support::Random random;
        const std::vector<float> x = random.noise(48);
        const reference::Bins bins = reference::forward(x);
        {
            std::vector<std::jthread> threads;
            for (int thread = 0; thread < 4; ++thread)
                threads.emplace_back([&, inverse = thread % 2 == 1] {
                    const auto start = std::chrono::steady_clock::now();
                    while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(120)) {
                        ORVA_FFT *fft = __FFTW_CreatePlan(48, inverse);
                        ASSERT_LT(reference::deviation(fft, inverse, x, bins), reference::tolerance);
                        ORVA_FFTProcDestroy(fft);
                    }
                });
        }
        ORVA_OptimizeFFT(true);
        ORVA_FinalizeFFT();
        EXPECT_EQ(support::readFile(store.path), store::wisdom());
    });
}

TEST(EngineThreads, TwoThatWaitBothComeBack)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        prepareUpTo(64);
        const std::string expected = store::wisdomOf({16, 32, 64});
        ORVA_InitializeFFT();
        {
            std::vector<std::jthread> threads;
            for (int thread = 0; thread < 2; ++thread)
                threads.emplace_back([&] {
                    EXPECT_TRUE(ORVA_OptimizeFFT(true));
                    EXPECT_EQ(support::readFile(store.path), expected);
                });
        }
        ORVA_OptimizeFFT(true);
        EXPECT_EQ(__FFTW_InitThread, nullptr);
        ORVA_FinalizeFFT();
    });
}
