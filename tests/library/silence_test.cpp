// No processing call takes much longer over silence, decaying or subnormal input than over noise, in the first second of it or
// in the sixtieth. docs/speed.md promises twice as long and names what takes more; each limit here is half as much again.
//
// Times are compared within a run: each is the least of some rounds, a tenth of a second of sound at a time, normal input in
// turn with the other, so that what else the machine does goes by.
#include "support/random.h"
#include "support/silence.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <numeric>

using namespace silence;

namespace
{

constexpr size_t tenth = second / 10;
constexpr int rounds = 9;

double timeOf(const std::function<void()> &call)
{
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void push(const Take &take, const float *samples, size_t count)
{
    for (size_t i = 0; i < count; i += blockLength)
        take(samples + i);
}

// What a second takes, of the least times of its tenths.
struct Least {
    std::array<double, 10> tenths;

    Least()
    {
        tenths.fill(std::numeric_limits<double>::infinity());
    }

    void measure(size_t i, const Take &take, const Second &samples)
    {
        tenths[i] = std::min(tenths[i], timeOf([&] { push(take, &samples[i * tenth], tenth); }));
    }

    double sum() const
    {
        return std::accumulate(tenths.begin(), tenths.end(), 0.0);
    }
};

struct Ratios {
    double first, sixtieth;
};

Ratios ratiosOf(const Path &path, Kind kind, const Second &noise)
{
    const Second early = secondOf(kind, 1, noise), late = secondOf(kind, 60, noise);
    Least normal, first, sixtieth;
    Take usual, other;
    for (int round = 0; round < rounds; ++round) {
        usual = path.make();
        other = path.make();
        push(usual, noise.data(), second);
        push(other, noise.data(), second);
        for (size_t i = 0; i < 10; ++i) {
            normal.measure(i, usual, noise);
            first.measure(i, other, early);
        }
    }
    for (int number = 2; number < 60; ++number)
        push(other, late.data(), second);
    for (int round = 0; round < rounds; ++round)
        for (size_t i = 0; i < 10; ++i) {
            normal.measure(i, usual, noise);
            sixtieth.measure(i, other, late);
        }
    return {first.sum() / normal.sum(), sixtieth.sum() / normal.sum()};
}

// How much longer the processor itself takes over subnormal numbers: where it does, so do the paths.
double costOfSubnormals()
{
    const auto least = [](double start) {
        double result = std::numeric_limits<double>::infinity();
        for (int round = 0; round < 4 * rounds; ++round)
            result = std::min(result, timeOf([=] {
                                  volatile double y = start;
                                  for (int i = 0; i < 10'000; ++i)
                                      y = y * 0.75 + start;
                              }));
        return result;
    };
    return std::max(1.0, least(0x1p-1040) / least(1.0));
}

} // namespace

TEST(Silence, TakesNoPathMuchLongerThanNoise)
{
    const double processor = costOfSubnormals();
    std::printf("subnormal numbers take this processor %.2f times as long\n", processor);
    support::Random random;
    const Second noise = random.noise(second);
    for (const Path &path : paths)
        for (const auto &[name, kind] : kinds) {
            // Time scaling searches all candidates in double where samples are subnormal.
            const bool searches = path.name == std::string("time scaling") && kind != zeros;
            const double limit = (searches ? 8.0 : 3.0) * processor;
            Ratios ratios = ratiosOf(path, kind, noise);
            // Again where the machine may have been to blame.
            for (int again = 0; again < 3 && std::max(ratios.first, ratios.sixtieth) >= limit; ++again)
                ratios = ratiosOf(path, kind, noise);
            std::printf("%-28s %-10s %5.2f %5.2f\n", path.name, name, ratios.first, ratios.sixtieth);
            EXPECT_LT(ratios.first, limit) << path.name << ", " << name << ", first second";
            EXPECT_LT(ratios.sixtieth, limit) << path.name << ", " << name << ", 60th second";
        }
}
