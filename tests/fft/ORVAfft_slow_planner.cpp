#include "fft/ORVAfft_slow_planner.h"

#include <fftw3.h>

#include <chrono>
#include <thread>

#include <dlfcn.h>

std::atomic<int> plans = 0;
std::atomic<bool> isStopping = false;

namespace
{

// Makes the plan by the function of that name that would have been called without us.
template <auto *ours, class... Arguments> fftwf_plan planSlowly(const char *name, Arguments... arguments)
{
    const bool isThird = ++plans == 3;
    while (isThird && !isStopping)
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    return reinterpret_cast<decltype(ours)>(dlsym(RTLD_NEXT, name))(arguments...);
}

} // namespace

fftwf_plan fftwf_plan_dft_r2c_1d(int n, float *in, fftwf_complex *out, unsigned flags)
{
    return planSlowly<fftwf_plan_dft_r2c_1d>("fftwf_plan_dft_r2c_1d", n, in, out, flags);
}

fftwf_plan fftwf_plan_dft_c2r_1d(int n, fftwf_complex *in, float *out, unsigned flags)
{
    return planSlowly<fftwf_plan_dft_c2r_1d>("fftwf_plan_dft_c2r_1d", n, in, out, flags);
}
