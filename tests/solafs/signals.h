// What the scaler is tried on.
#pragma once

#include "support/random.h"
#include "support/recording.h"

#include <cmath>
#include <cstddef>
#include <numbers>
#include <string>
#include <vector>

struct Signal {
    std::string name;
    std::vector<float> samples;
};

inline std::vector<float> tones(size_t length, double sampleRate)
{
    std::vector<float> samples(length);
    for (size_t n = 0; n < length; ++n) {
        const double t = static_cast<double>(n) / sampleRate;
        samples[n] = static_cast<float>(0.4 * std::sin(2.0 * std::numbers::pi * 220.0 * t) +
                                        0.3 * std::sin(2.0 * std::numbers::pi * 553.7 * t));
    }
    return samples;
}

// Constant, and from `turn` on the same with its sign turned: what lies after the turn correlates
// negatively, at every skew, with what lies before it.
inline std::vector<float> turned(size_t length, size_t turn)
{
    std::vector<float> samples(length, 0.5f);
    for (size_t n = turn; n < length; ++n)
        samples[n] = -0.5f;
    return samples;
}

// The middle of the recorded word.
inline std::vector<float> voice(size_t length)
{
    const std::vector<float> all = support::recording();
    return {all.begin() + 6000, all.begin() + 6000 + static_cast<ptrdiff_t>(length)};
}
