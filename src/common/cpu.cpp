#include "common/cpu.h"

#include <algorithm>
#include <atomic>

namespace orva
{

const char *nameOf(Level level)
{
    static constexpr std::array names = {"plain", "baseline", "avx2", "avx512"};
    return names[static_cast<size_t>(level)];
}

#ifdef __x86_64__

bool isAvailable(Level level)
{
    __builtin_cpu_init(); // this may run before the compiler's own look at the processor
    const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
    switch (level) {
    case Level::avx2:
        return hasAvx2;
    case Level::avx512:
#ifdef ORVA_EMULATE_AVX512 // its lanes on a processor without it, for tests
        return hasAvx2;
#else
        return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
               __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512bw") != 0;
#endif
    default:
        return true;
    }
}

namespace
{

bool findSlowSubnormals()
{
    __builtin_cpu_init();
    return __builtin_cpu_is("amd") == 0;
}

} // namespace

#else

bool isAvailable(Level level)
{
    return level <= Level::baseline;
}

namespace
{

bool findSlowSubnormals()
{
    return false;
}

} // namespace

#endif

namespace
{

// Zero before its initialisation at load, which is the plain level; that runs everywhere.
std::atomic<Level> inForce = *std::find_if(allLevels.rbegin(), allLevels.rend(), isAvailable);

const bool areSubnormalsSlow = findSlowSubnormals();

} // namespace

bool hasSlowSubnormals()
{
    return areSubnormalsSlow;
}

Level levelInForce()
{
    return inForce.load(std::memory_order_relaxed);
}

bool forceLevel(Level level)
{
    if (!isAvailable(level))
        return false;
    inForce.store(level, std::memory_order_relaxed);
    return true;
}

} // namespace orva
