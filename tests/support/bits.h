// Comparison of results bit by bit, the measure wherever the bits are part of the contract.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <span>
#include <vector>

namespace support
{

inline uint32_t bitsOf(float x)
{
    return std::bit_cast<uint32_t>(x);
}

inline uint64_t bitsOf(double x)
{
    return std::bit_cast<uint64_t>(x);
}

// Equal to the last bit, the sign of zero included; any not-a-number equals any other.
template <class Real> bool sameBits(Real a, Real b)
{
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

template <class Real>
testing::AssertionResult sameBits(std::span<const Real> actual, std::span<const Real> expected)
{
    if (actual.size() != expected.size())
        return testing::AssertionFailure() << actual.size() << " values instead of " << expected.size();
    for (size_t i = 0; i < actual.size(); ++i) {
        if (!sameBits(actual[i], expected[i])) {
            return testing::AssertionFailure()
                   << std::setprecision(17) << "at " << i << " of " << actual.size() << ": " << actual[i]
                   << " instead of " << expected[i] << " (0x" << std::hex << bitsOf(actual[i]) << ", 0x"
                   << bitsOf(expected[i]) << ")";
        }
    }
    return testing::AssertionSuccess();
}

template <class Real>
testing::AssertionResult sameBits(const std::vector<Real> &actual, const std::vector<Real> &expected)
{
    return sameBits(std::span<const Real>(actual), std::span<const Real>(expected));
}

} // namespace support
