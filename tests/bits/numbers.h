// The inputs: numbers from integers alone, so that they are the same on every system. What the standard library offers
// for this may differ from one to another. Whoever draws draws once in an expression: the order of several is the compiler's.
#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace bits
{

class Numbers
{
public:
    explicit Numbers(uint64_t seed) : state(seed) {}

    // SplitMix64 (G. L. Steele, D. Lea, C. H. Flood, "Fast splittable pseudorandom number generators", 2014).
    uint64_t next()
    {
        state += 0x9e3779b97f4a7c15;
        uint64_t z = state;
        z = (z ^ z >> 30) * 0xbf58476d1ce4e5b9;
        z = (z ^ z >> 27) * 0x94d049bb133111eb;
        return z ^ z >> 31;
    }

    // first .. last, both included
    int32_t integer(int32_t first, int32_t last)
    {
        const auto count = static_cast<uint64_t>(int64_t{last} - first + 1);
        return static_cast<int32_t>(first + static_cast<int64_t>((next() >> 32) * count >> 32));
    }

    size_t size(int32_t first, int32_t last)
    {
        return static_cast<size_t>(integer(first, last));
    }

    bool coin()
    {
        return next() >> 63 != 0;
    }

    // -1 .. 1, in steps of 2^-23
    float sample()
    {
        return static_cast<float>(integer(-(1 << 23), 1 << 23)) * 0x1p-23f;
    }

    // -1 .. 1, in steps of 2^-53
    double real()
    {
        return static_cast<double>(static_cast<int64_t>(next()) >> 10) * 0x1p-53;
    }

    // Any bits.
    float any()
    {
        return std::bit_cast<float>(static_cast<uint32_t>(next()));
    }

    // Samples, among which any bits and values at which branches turn are strewn.
    float mixed()
    {
        constexpr float inf = std::numeric_limits<float>::infinity();
        constexpr float nan = std::numeric_limits<float>::quiet_NaN();
        constexpr float special[] = {0.0f,    -0.0f,    1.0f,     -1.0f,     0.5f,      inf,
                                     -inf,    nan,      1.0e-45f, -1.0e-45f, 0x1p-126f, 0x1.8p-127f,
                                     3.4e38f, -3.4e38f, 0x1p-75f, 0x1p70f};
        switch (integer(0, 9)) {
        case 0:
            return special[integer(0, 15)];
        case 1:
            return any();
        default:
            return sample();
        }
    }

    // Samples, zeros of both signs and subnormals: what recursions forget again.
    float finite()
    {
        switch (integer(0, 15)) {
        case 0:
            return coin() ? 0.0f : -0.0f;
        case 1:
            return std::bit_cast<float>(static_cast<uint32_t>(next()) & 0x807fffff);
        default:
            return sample();
        }
    }

    std::vector<float> vector(size_t length, float (Numbers::*draw)())
    {
        std::vector<float> values(length);
        for (float &x : values)
            x = (this->*draw)();
        return values;
    }

private:
    uint64_t state;
};

} // namespace bits
