// What a hash is taken of: results, in an order of bytes of their own, every not-a-number as one and the same.
#pragma once

#include "sha256.h"

#include <bit>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace bits
{

class Digest
{
public:
    void add(float x)
    {
        addBits(std::isnan(x) ? uint32_t{0x7fc00000} : std::bit_cast<uint32_t>(x));
    }

    void add(double x)
    {
        addBits(std::isnan(x) ? uint64_t{0x7ff8000000000000} : std::bit_cast<uint64_t>(x));
    }

    template <std::signed_integral Integer> void add(Integer x)
    {
        addBits(static_cast<std::make_unsigned_t<Integer>>(x));
    }

    template <class Value> void add(const std::vector<Value> &values)
    {
        for (const Value x : values)
            add(x);
    }

    int64_t valueCount() const
    {
        return count;
    }

    std::string hexadecimal() const
    {
        return hash.hexadecimal();
    }

private:
    template <std::unsigned_integral Word> void addBits(Word word)
    {
        uint8_t bytes[sizeof word];
        for (size_t i = 0; i < sizeof word; ++i)
            bytes[i] = static_cast<uint8_t>(word >> 8 * i);
        hash.add(bytes);
        ++count;
    }

    Sha256 hash;
    int64_t count = 0;
};

} // namespace bits
