// What this processor can do at best, by which the page on speed computes the limit of each path: multiplications, each
// with an addition beside it, and sections of biquads, at each width of vectors; reading from the second cache; and the
// dependent steps of recursions. Times are for one multiplication with its addition, one section, one byte or one step.
#include "cases.h"
#include "widths.h"

namespace
{

void addPeak(const std::string &level, const Width &width)
{
    constexpr size_t rounds = 1000;
    addCase("multiply and add, float/" + level, rounds * peakOperations * width.bytes / sizeof(float),
            [&width] { return [&width] { benchmark::DoNotOptimize(width.peakFloat(rounds, 1.0f)); }; });
    addCase("multiply and add, double/" + level, rounds * peakOperations * width.bytes / sizeof(double),
            [&width] { return [&width] { benchmark::DoNotOptimize(width.peakDouble(rounds, 1.0)); }; });
    addCase("section/" + level, rounds * peakSections * width.bytes / sizeof(double),
            [&width] { return [&width] { benchmark::DoNotOptimize(width.sections(rounds)); }; });
    constexpr size_t bytes = size_t{1} << 17; // more than the nearest cache holds, less than the second
    addCase("read of a byte/" + level, bytes, [&width] {
        return [&width, floats = alignedFloats(bytes / sizeof(float))] {
            benchmark::DoNotOptimize(width.read(floats.get(), bytes));
        };
    });
}

// A recursion in which each step waits for the last one by a multiplication and so many additions.
template <class Real, int additions> void addChain(const std::string &name)
{
    constexpr size_t steps = 1000;
    addCase(name, steps, [] {
        return [factor = Real(0.5), addend = Real(0.25)] {
            Real x = 1, k = factor, b = addend;
            benchmark::DoNotOptimize(k);
            benchmark::DoNotOptimize(b);
            for (size_t i = 0; i < steps; ++i) {
                x *= k;
                for (int j = 0; j < additions; ++j)
                    x += b;
            }
            benchmark::DoNotOptimize(x);
        };
    });
}

const bool registered = [] {
    addPeak("baseline", baseline::width);
#ifdef __x86_64__
    if (orva::isAvailable(orva::Level::avx2))
        addPeak("avx2", avx2::width);
    if (orva::isAvailable(orva::Level::avx512))
        addPeak("avx512", avx512::width);
#endif
    addChain<double, 2>("chain/multiply and 2 adds, double");
    addChain<float, 8>("chain/multiply and 8 adds, float");
    return true;
}();

} // namespace
