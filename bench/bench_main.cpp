// Runs the registered benchmarks and prints one line a case: the time of every peer, and that time as a ratio to ours at its
// fastest, so that above 1 we are ahead. A benchmark is named "<case>/<peer>", ours "<case>/orva", or "<case>/orva <level>"
// where it runs at a level of its kernels; its items processed are the samples of a call. Whatever else ours counts stands
// at the end of the line.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace
{

struct Timing {
    std::string peer;
    double nanoseconds;   // a sample, the shortest of all repetitions: the one that was disturbed least
    std::string counters; // of that one
};

struct Case {
    std::string name;
    int64_t order; // of registration, which interleaved repetitions do not keep
    std::vector<Timing> timings;
};

class Ratios : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &) override
    {
        return true;
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Iteration)
                keep(run.run_name.function_name, run.family_index, run.counters);
    }

    void Finalize() override
    {
        std::sort(cases.begin(), cases.end(), [](const Case &a, const Case &b) { return a.order < b.order; });
        for (Case &one : cases) {
            std::sort(one.timings.begin(), one.timings.end(),
                      [](const Timing &a, const Timing &b) { return a.peer < b.peer; });
            std::printf("%-40s", one.name.c_str());
            for (const Timing &timing : one.timings)
                std::printf("  %s %.3g ns", timing.peer.c_str(), timing.nanoseconds);
            if (const Timing *ours = fastestOfOurs(one); ours != nullptr) {
                for (const Timing &timing : one.timings)
                    if (!isOurs(timing))
                        std::printf("  %s/%s %.3g", timing.peer.c_str(), ours->peer.c_str(),
                                    timing.nanoseconds / ours->nanoseconds);
                std::printf("%s", ours->counters.c_str());
            }
            std::printf("\n");
        }
    }

private:
    static bool isOurs(const Timing &timing)
    {
        return timing.peer.starts_with("orva");
    }

    static const Timing *fastestOfOurs(const Case &one)
    {
        const Timing *fastest = nullptr;
        for (const Timing &timing : one.timings)
            if (isOurs(timing) && (fastest == nullptr || timing.nanoseconds < fastest->nanoseconds))
                fastest = &timing;
        return fastest;
    }

    static std::string textOf(const benchmark::UserCounters &counters)
    {
        std::string text;
        for (const auto &[name, counter] : counters) {
            char number[32];
            std::snprintf(number, sizeof number, "%.5g", counter.value);
            if (name != "items_per_second")
                text += "  " + name + " " + number;
        }
        return text;
    }

    void keep(const std::string &name, int64_t order, const benchmark::UserCounters &counters)
    {
        const double nanoseconds = 1e9 / counters.at("items_per_second");
        const size_t slash = name.rfind('/');
        const std::string caseName = name.substr(0, slash);
        const std::string peer = name.substr(slash + 1);
        auto one =
            std::find_if(cases.begin(), cases.end(), [&](const Case &c) { return c.name == caseName; });
        if (one == cases.end())
            one = cases.insert(cases.end(), {caseName, order, {}});
        one->order = std::min(one->order, order);
        auto timing = std::find_if(one->timings.begin(), one->timings.end(),
                                   [&](const Timing &t) { return t.peer == peer; });
        if (timing == one->timings.end())
            one->timings.push_back({peer, nanoseconds, textOf(counters)});
        else if (nanoseconds < timing->nanoseconds)
            *timing = {peer, nanoseconds, textOf(counters)};
    }

    std::vector<Case> cases;
};

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    Ratios ratios;
    const size_t run = benchmark::RunSpecifiedBenchmarks(&ratios);
    return run > 0 ? 0 : 1;
}
