// What fuzz targets share: an end at what does not hold, and the calls and blocks that a byte string drives.
#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace support
{

inline void require(bool holds, const char *what)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

// Equal to the last bit; any not-a-number equals any other.
inline void requireSameBits(const std::vector<float> &actual, const std::vector<float> &expected)
{
    require(actual.size() == expected.size(), "the library and the plain form give as many samples");
    for (size_t i = 0; i < actual.size(); ++i)
        require(std::bit_cast<uint32_t>(actual[i]) == std::bit_cast<uint32_t>(expected[i]) ||
                    (std::isnan(actual[i]) && std::isnan(expected[i])),
                "the library and the plain form give the same bits");
}

// Reads a byte string from its beginning; after its end come zeros.
class Bytes
{
public:
    Bytes(const uint8_t *data, size_t size) : next(data), end(data + size) {}

    bool isAtEnd() const
    {
        return next == end;
    }

    uint8_t byte()
    {
        return isAtEnd() ? uint8_t{0} : *next++;
    }

    size_t below(size_t limit)
    {
        return byte() % limit;
    }

    // In -4 .. 4, in steps of 1 / 32.
    double coefficient()
    {
        return (byte() - 128) / 32.0;
    }

    std::string rest()
    {
        const std::string text(reinterpret_cast<const char *>(next), static_cast<size_t>(end - next));
        next = end;
        return text;
    }

    // Up to 63 samples of one of four kinds: noise, silence, numbers at which branches turn, and bits as they come.
    std::vector<float> block()
    {
        constexpr float inf = std::numeric_limits<float>::infinity();
        constexpr float odd[] = {
            0.0f,   -0.0f,   1.0f,   -1.0f, inf, -inf, std::numeric_limits<float>::quiet_NaN(),
            1e-45f, -1e-40f, 3.4e38f};
        const uint8_t what = byte();
        std::vector<float> samples(what % 64u);
        for (float &x : samples) {
            noise = noise * 1664525u + 1013904223u;
            if (what < 64)
                x = static_cast<float>(static_cast<int32_t>(noise)) * 0x1p-31f;
            else if (what < 128)
                x = 0.0f;
            else if (what < 192)
                x = odd[below(std::size(odd))];
            else
                x = std::bit_cast<float>(static_cast<uint32_t>(byte()) << 24 | noise >> 8);
        }
        return samples;
    }

private:
    const uint8_t *next, *end;
    uint32_t noise = 1;
};

} // namespace support
