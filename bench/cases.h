// What benchmarks share: noise, memory as FFTW aligns it, and the registration of a case.
#pragma once

#include "common/cpu.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

// The same in every run, within -1 .. 1.
inline std::vector<float> noise(size_t length)
{
    std::mt19937 engine(1);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    std::vector<float> samples(length);
    for (float &x : samples)
        x = uniform(engine);
    return samples;
}

// Calls its function with a handle when it goes.
template <auto destroy> struct Destroy {
    template <class Handle> void operator()(Handle *handle) const
    {
        destroy(handle);
    }
};

template <class Handle, auto destroy> using Owned = std::unique_ptr<Handle, Destroy<destroy>>;
using AlignedFloats = std::unique_ptr<float[], Destroy<fftwf_free>>;
using Plan = Owned<std::remove_pointer_t<fftwf_plan>, fftwf_destroy_plan>;

inline AlignedFloats alignedFloats(size_t count)
{
    AlignedFloats floats(fftwf_alloc_real(count));
    std::fill_n(floats.get(), count, 0.0f);
    return floats;
}

inline fftwf_complex *complexOf(float *floats)
{
    return reinterpret_cast<fftwf_complex *>(floats);
}

// What a case tells beside its time, of a run that has handled so many samples.
using Counters = std::function<void(benchmark::State &state, double samples)>;

inline benchmark::Counter aSecond(double count)
{
    return {count, benchmark::Counter::kIsRate};
}

// The best level of the kernels that this processor has.
inline orva::Level bestLevel()
{
    return *std::find_if(orva::allLevels.rbegin(), orva::allLevels.rend(), orva::isAvailable);
}

// Times what make() gives, a function without arguments that returns how many samples it has handled.
template <class Make>
void addStream(const std::string &name, Make make, const Counters &counters = {},
               orva::Level level = bestLevel())
{
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
        orva::forceLevel(level);
        auto run = make();
        benchmark::DoNotOptimize(&run); // whoever reads what it holds
        int64_t samples = 0;
        for (auto _ : state) {
            samples += static_cast<int64_t>(run());
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(samples);
        if (counters)
            counters(state, static_cast<double>(samples));
    });
}

// The same where each call handles `samples` samples, and the function returns nothing.
template <class Make>
void addCase(const std::string &name, size_t samples, Make make, const Counters &counters = {},
             orva::Level level = bestLevel())
{
    const auto counted = [=] {
        return [samples, run = make()]() mutable {
            run();
            return samples;
        };
    };
    addStream(name, counted, counters, level);
}

// Ours at each level of the kernels that this processor has: "<case>/orva <level>".
template <class Make> void addStreamLevels(const std::string &name, Make make, const Counters &counters = {})
{
    for (const orva::Level level : orva::allLevels)
        if (orva::isAvailable(level))
            addStream(name + "/orva " + orva::nameOf(level), make, counters, level);
}

template <class Make>
void addLevels(const std::string &name, size_t samples, Make make, const Counters &counters = {})
{
    for (const orva::Level level : orva::allLevels)
        if (orva::isAvailable(level))
            addCase(name + "/orva " + orva::nameOf(level), samples, make, counters, level);
}

// A copy of `count` floats, the least that a pass over them can take. The two lie half a page apart from a whole number of
// pages: a copy within a few bytes of that takes twenty times as long on some processors.
inline void addCopy(const std::string &name, size_t items, size_t count)
{
    addCase(name, items, [=] {
        const size_t distance = (count + 1023) / 1024 * 1024 + 512;
        return [count, distance, floats = alignedFloats(distance + count)] {
            std::memcpy(floats.get() + distance, floats.get(), count * sizeof(float));
        };
    });
}
