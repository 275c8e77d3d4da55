// Both converters in their plainest form: every sample kept, every sum a loop, nothing done at once.
#pragma once

#include "support/bits.h"
#include "support/random.h"

#include <orva/ORVAresample.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numeric>
#include <ostream>
#include <span>
#include <string>
#include <vector>

using Floats = std::vector<float>;

struct DestroyResampler {
    void operator()(ORVA_RESAMPLER *resampler) const
    {
        ORVA_ResampleDestroy(resampler);
    }
};
using Resampler = std::unique_ptr<ORVA_RESAMPLER, DestroyResampler>;

struct Rates {
    int32_t input, output;
};

inline std::ostream &operator<<(std::ostream &out, const Rates &rates)
{
    return out << rates.input << " to " << rates.output;
}

inline Resampler newResampler(Rates rates, const std::string &config = "")
{
    return Resampler(ORVA_ResampleInit(rates.input, rates.output, config.c_str()));
}

// n samples in give so many out, before any is dropped.
inline int64_t lengthAfter(int64_t n, Rates rates)
{
    return (n * rates.output + rates.input - 1) / rates.input;
}

constexpr float unwritten = 12345.0f;

// A call with just the room that its result takes; what lies after it stays as it was.
inline Floats convert(ORVA_RESAMPLER *resampler, std::span<const float> input, size_t room)
{
    Floats output(room + 4, unwritten);
    const int32_t written =
        ORVA_Resample(resampler, input.data(), output.data(), static_cast<int32_t>(input.size()));
    EXPECT_GE(written, 0);
    EXPECT_LE(written, std::ssize(output) - 4);
    const auto count = static_cast<size_t>(std::max(written, 0));
    for (size_t i = count; i < output.size(); ++i)
        EXPECT_EQ(output[i], unwritten) << "after the result, at " << i << " of " << count;
    output.resize(std::min(count, output.size()));
    return output;
}

// Whether blocks that are converted in place give the bits of those that are not.
inline bool sameInPlace(Rates rates, const std::string &config)
{
    support::Random random;
    const auto apart = newResampler(rates, config), inPlace = newResampler(rates, config);
    for (int block = 0; block < 5; ++block) {
        Floats samples = random.noise(100);
        const auto room = static_cast<size_t>(lengthAfter(100, rates)) + 1;
        const Floats expected = convert(apart.get(), samples, room);
        samples.resize(std::max<size_t>(room, 100));
        samples.resize(
            static_cast<size_t>(ORVA_Resample(inPlace.get(), samples.data(), samples.data(), 100)));
        if (!support::sameBits(samples, expected))
            return false;
    }
    return true;
}

// Blocks of these lengths, over and over.
inline Floats convertInBlocks(ORVA_RESAMPLER *resampler, Rates rates, std::span<const float> input,
                              const std::vector<size_t> &cuts)
{
    Floats output;
    for (size_t start = 0, i = 0; start < input.size(); ++i) {
        const size_t count = std::min(cuts[i % cuts.size()], input.size() - start);
        const auto room = static_cast<size_t>(lengthAfter(static_cast<int64_t>(count), rates)) + 1;
        const Floats block = convert(resampler, input.subspan(start, count), room);
        output.insert(output.end(), block.begin(), block.end());
        start += count;
    }
    return output;
}

inline Floats flush(ORVA_RESAMPLER *resampler, int32_t maxCount)
{
    Floats output(static_cast<size_t>(std::max(ORVA_ResampleFlushBufferSize(resampler), 0)) + 4, unwritten);
    const int32_t written = ORVA_ResampleFlushBuffersEx(resampler, output.data(), maxCount);
    EXPECT_GE(written, 0);
    const auto count = static_cast<size_t>(std::max(written, 0));
    for (size_t i = count; i < output.size(); ++i)
        EXPECT_EQ(output[i], unwritten) << "after the flush, at " << i << " of " << count;
    output.resize(std::min(count, output.size()));
    return output;
}

class PlainPolyphase
{
public:
    PlainPolyphase(Rates rates, int32_t order, bool compensates)
        : L(rates.output / std::gcd(rates.input, rates.output)),
          M(rates.input / std::gcd(rates.input, rates.output))
    {
        const int32_t N = 2 * order * std::max(L, M);
        const int32_t length = N + 1;
        delay = static_cast<int32_t>(
            std::roundf(static_cast<float>(N) / (static_cast<float>(M) + static_cast<float>(M))));
        toSkip = compensates ? delay : 0;
        h.resize(static_cast<size_t>(length));
        const double pi = 3.141592653589793;
        const double c = 0.95 * std::min(pi / M, pi / L);
        const double half = N * 0.5;
        for (int32_t i = 0; i < N / 2; ++i) {
            const double t = i - half;
            const double s = std::sin(c * t);
            const double w = (0.42 - 0.5 * std::cos(i * 6.283185307179586 / length)) +
                             0.08 * std::cos(i * 12.566370614359172 / length);
            h[static_cast<size_t>(i)] = (s / (t * pi)) * (w * L);
            h[static_cast<size_t>(N - i)] = h[static_cast<size_t>(i)];
        }
        h[static_cast<size_t>(N / 2)] =
            L > M ? 0.95 : static_cast<double>(static_cast<float>(L) / static_cast<float>(M)) * 0.95;
        taps = length % L == 0 ? length / L : length / L + 1;
    }

    Floats run(std::span<const float> input)
    {
        Floats output;
        for (const float x : input) {
            past.push_back(static_cast<double>(x));
            while (phase < L) {
                if (toSkip == 0)
                    output.push_back(static_cast<float>(sum()));
                else
                    --toSkip;
                phase += M;
            }
            phase -= L;
        }
        return output;
    }

    Floats flush(int32_t maxCount)
    {
        const int32_t remaining = delay;
        const int32_t limit = maxCount > 0 ? std::min(maxCount, remaining) : remaining;
        Floats output;
        if (limit >= 1 && phase >= 0) {
            do {
                past.push_back(0.0);
                while (phase < L) {
                    if (toSkip == 0) {
                        output.push_back(roundedSum());
                        if (std::ssize(output) >= limit)
                            break;
                    } else {
                        --toSkip;
                    }
                    phase += M;
                }
                phase -= L;
            } while (phase >= 0 && std::ssize(output) < limit);
        }
        delay = std::max(remaining - static_cast<int32_t>(output.size()), 0);
        return output;
    }

    // The coefficient j of a phase.
    double coefficient(int32_t p, int32_t j) const
    {
        const int64_t at = p + int64_t{j} * L;
        return at < std::ssize(h) ? h[static_cast<size_t>(at)] : 0.0;
    }

    // The sample j steps old.
    double sample(int32_t j) const
    {
        return j < std::ssize(past) ? past[past.size() - 1 - static_cast<size_t>(j)] : 0.0;
    }

    const int32_t L, M;
    int32_t taps = 0, phase = 0, delay = 0, toSkip = 0;
    std::vector<double> h;

private:
    double sum() const
    {
        double y = 0.0;
        for (int32_t j = 0; j < taps; ++j)
            y += coefficient(phase, j) * sample(j);
        return y;
    }

    float roundedSum() const
    {
        float y = 0.0f;
        for (int32_t j = 0; j < taps; ++j)
            y = static_cast<float>(static_cast<double>(y) + coefficient(phase, j) * sample(j));
        return y;
    }

    std::vector<double> past;
};

// The hold with the filter of these coefficients; none at all give zeros.
class PlainHold
{
public:
    PlainHold(Rates rates, std::span<const double> denominator, std::span<const double> numerator)
        : up(static_cast<uint32_t>(rates.output / std::gcd(rates.input, rates.output))),
          down(static_cast<uint32_t>(rates.input / std::gcd(rates.input, rates.output))),
          filtersLast(rates.input <= rates.output), a(denominator.begin(), denominator.end()),
          b(numerator.begin(), numerator.end()), state(a.size() + 1)
    {
    }

    Floats run(std::span<const float> input)
    {
        Floats output;
        for (const float x : input) {
            const double newest = filtersLast ? static_cast<double>(x) : filtered(x);
            for (; phase < up; phase += down) {
                const auto held = static_cast<float>(newest);
                output.push_back(filtersLast ? static_cast<float>(filtered(held)) : held);
            }
            phase -= up;
        }
        return output;
    }

private:
    double filtered(float sample)
    {
        if (a.empty())
            return 0.0;
        const double x = sample;
        const double y = b[0] * x + state[0];
        for (size_t k = 0; k + 1 < a.size(); ++k)
            state[k] = (b[k + 1] * x + state[k + 1]) - a[k + 1] * y;
        return y;
    }

    uint32_t up, down, phase = 0;
    bool filtersLast;
    std::vector<double> a, b, state;
};
