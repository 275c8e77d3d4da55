// Both structures in the plainest form, straight from their recursions, and filters paired with them.
#pragma once

#include "support/random.h"

#include <orva/ORVAfilter.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct Destroy {
    void operator()(_ORVA_FILTER *filter) const
    {
        ORVA_DestroyFilter(filter);
    }
};

using Filter = std::unique_ptr<_ORVA_FILTER, Destroy>;

class Reference
{
public:
    explicit Reference(size_t channelCount) : channels(channelCount) {}

    virtual ~Reference() = default;

    void run(const float *input, float *output, int64_t numSamples, int64_t offset, int64_t stride)
    {
        for (int64_t i = offset; i <= numSamples - static_cast<int64_t>(channels); i += stride)
            frame(input + i, output + i);
    }

    const size_t channels;

protected:
    virtual void frame(const float *x, float *y) = 0;
};

// past[k][c] is w[n-1-k] of channel c.
class DirectReference : public Reference
{
public:
    DirectReference(size_t channelCount, const std::vector<double> &b, const std::vector<double> &a)
        : Reference(channelCount), past(std::max(a.size(), b.size()) - 1, std::vector<float>(channelCount))
    {
        for (double value : b)
            num.push_back(static_cast<float>(value / a[0]));
        for (double value : a)
            den.push_back(static_cast<float>(value / a[0]));
    }

    std::vector<float> num, den; // divided by a(0)
    std::vector<std::vector<float>> past;

private:
    void frame(const float *x, float *y) override
    {
        std::vector<float> w(channels);
        for (size_t c = 0; c < channels; ++c) {
            w[c] = x[c];
            y[c] = 0.0f;
        }
        for (size_t c = 0; c < channels; ++c) {
            for (size_t k = 1; k < den.size(); ++k) {
                const float product = den[k] * past[k - 1][c];
                w[c] = w[c] - product;
            }
            for (size_t k = 1; k < num.size(); ++k) {
                const float product = num[k] * past[k - 1][c];
                y[c] = y[c] + product;
            }
            const float product = w[c] * num[0];
            y[c] = y[c] + product;
        }
        past.insert(past.begin(), w);
        past.pop_back();
    }
};

// past[s][c] holds w[n-1], w[n-2] and w[n-3] of section s, channel c; the last is the slot that is written
// next.
class BiquadReference : public Reference
{
public:
    BiquadReference(size_t channelCount, const std::vector<double> &records)
        : Reference(channelCount), coefs(records),
          past(records.size() / 5, std::vector<std::array<double, 3>>(channelCount))
    {
    }

    std::vector<double> coefs;
    std::vector<std::vector<std::array<double, 3>>> past;

private:
    void frame(const float *input, float *output) override
    {
        for (size_t c = 0; c < channels; ++c) {
            float x = input[c];
            output[c] = x;
            for (size_t s = 0; s < past.size(); ++s) {
                auto &[w1, w2, w3] = past[s][c];
                const double a1 = coefs[5 * s], a2 = coefs[5 * s + 1];
                const double b0 = coefs[5 * s + 2], b1 = coefs[5 * s + 3], b2 = coefs[5 * s + 4];
                double w = static_cast<double>(x) - w1 * a1;
                w = w - w2 * a2;
                double y = w * b0 + b1 * w1;
                y = y + b2 * w2;
                x = static_cast<float>(y);
                w3 = w2;
                w2 = w1;
                w1 = w;
            }
            output[c] = x;
        }
    }
};

// A filter and what it is to equal.
struct Pair {
    Filter filter;
    std::unique_ptr<Reference> reference;
    std::string name;
};

// Numerator and denominator of `count` coefficients, the poles well inside the unit circle.
inline std::vector<double> randomNumerator(support::Random &random, size_t count)
{
    std::vector<double> b(count);
    for (double &value : b)
        value = random.real(-1.0, 1.0);
    return b;
}

inline std::vector<double> randomDenominator(support::Random &random, size_t count)
{
    std::vector<double> a(count);
    a[0] = random.real(0.5, 2.0) * (random.integer(0, 1) == 0 ? -1.0 : 1.0);
    for (size_t k = 1; k < count; ++k)
        a[k] = a[0] * random.real(-0.9, 0.9) / static_cast<double>(count);
    return a;
}

inline std::vector<double> randomRecords(support::Random &random, size_t sections)
{
    std::vector<double> records;
    for (size_t s = 0; s < sections; ++s)
        for (double limit : {0.9, 0.09, 1.0, 1.0, 1.0})
            records.push_back(random.real(-limit, limit));
    return records;
}

inline Filter fromCoefs(size_t channels, const std::vector<double> &b, const std::vector<double> &a)
{
    return Filter(ORVA_CreateFilterFromCoefs(static_cast<uint32_t>(channels), static_cast<int32_t>(b.size()),
                                             b.data(), static_cast<uint32_t>(a.size()), a.data()));
}

inline Filter fromRecords(size_t channels, const std::vector<double> &records)
{
    static const double none = 0.0;
    return Filter(ORVA_CreateFilterFromBiquads(static_cast<int32_t>(channels),
                                               static_cast<uint32_t>(records.size() / 5),
                                               records.empty() ? &none : records.data()));
}

inline Pair directPair(support::Random &random, size_t channels, size_t numOrder, size_t denOrder)
{
    const auto b = randomNumerator(random, numOrder + 1);
    const auto a = randomDenominator(random, denOrder + 1);
    return {fromCoefs(channels, b, a), std::make_unique<DirectReference>(channels, b, a),
            "direct form " + std::to_string(numOrder) + "/" + std::to_string(denOrder) + ", channels " +
                std::to_string(channels)};
}

inline Pair biquadPair(support::Random &random, size_t channels, size_t sections)
{
    const auto records = randomRecords(random, sections);
    return {fromRecords(channels, records), std::make_unique<BiquadReference>(channels, records),
            "biquads " + std::to_string(sections) + ", channels " + std::to_string(channels)};
}

// A filter of either structure, of order 0 to 12.
inline Pair anyPair(support::Random &random, size_t channels)
{
    if (random.integer(0, 1) == 0)
        return biquadPair(random, channels, static_cast<size_t>(random.integer(0, 6)));
    const auto numOrder = static_cast<size_t>(random.integer(0, 12));
    return directPair(random, channels, numOrder, static_cast<size_t>(random.integer(0, 12)));
}

// Noise of one of five colours: plain, subnormal, with infinities and not-a-number now and then, and bit
// patterns.
inline std::vector<float> randomSamples(support::Random &random, size_t length)
{
    auto samples = random.noise(length);
    const int64_t colour = random.integer(0, 4);
    constexpr float odd[] = {__builtin_inff(), -__builtin_inff(), __builtin_nanf("")};
    for (float &x : samples) {
        if (colour == 1)
            x *= 1e-40f;
        else if (colour == 2 && random.integer(0, 9) == 0)
            x = x > 0.0f ? 0.0f : -0.0f;
        else if (colour == 3 && random.integer(0, 29) == 0)
            x = odd[random.integer(0, 2)];
        else if (colour == 4)
            x = random.anyFloat();
    }
    return samples;
}
