// Silence and subnormal numbers: what a second of input takes, the first and the sixtieth of each kind, after a second of
// noise, which is the normal one. Times are for a sample of input; a second has 48000.
#include "cases.h"
#include "support/silence.h"

#include <chrono>

using namespace silence;

namespace
{

double timeOf(const Take &take, const Second &samples)
{
    const auto start = std::chrono::steady_clock::now();
    for (size_t i = 0; i < second; i += blockLength)
        take(samples.data() + i);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void addSecond(const std::string &name, const Path &path, Kind kind, int number)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State &state) {
                                     const Second before = noise(second), late = secondOf(kind, 60, before);
                                     for (auto _ : state) {
                                         const Take take = path.make();
                                         double time = timeOf(take, before);
                                         if (number > 0)
                                             time = timeOf(take, secondOf(kind, 1, before));
                                         for (int i = 2; i < number; ++i)
                                             timeOf(take, late);
                                         if (number > 1)
                                             time = timeOf(take, late);
                                         state.SetIterationTime(time);
                                     }
                                     state.SetItemsProcessed(
                                         static_cast<int64_t>(second * state.iterations()));
                                 })
        ->UseManualTime()
        ->Iterations(1);
}

const bool registered = [] {
    for (const Path &path : paths) {
        const std::string name = std::string("silence, ") + path.name;
        addSecond(name + "/normal", path, zeros, 0);
        for (const auto &[kindName, kind] : kinds)
            for (const int number : {1, 60})
                addSecond(name + "/" + kindName + " " + std::to_string(number), path, kind, number);
    }
    return true;
}();

} // namespace
