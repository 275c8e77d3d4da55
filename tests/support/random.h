// Random input for tests. Every test draws afresh; the seed is printed with the line that repeats the run.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

namespace support
{

// ORVA_TEST_SEED if it is set, else a new seed.
inline uint64_t seed()
{
    const char *given = std::getenv("ORVA_TEST_SEED");
    const uint64_t value = given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
    const auto *test = testing::UnitTest::GetInstance()->current_test_info();
    std::printf("random input; repeat with: ORVA_TEST_SEED=%llu <program> --gtest_filter=%s.%s\n",
                static_cast<unsigned long long>(value), test->test_suite_name(), test->name());
    return value;
}

class Random
{
public:
    explicit Random(uint64_t start = seed()) : engine(start) {}

    // An integer in first .. last, both included.
    int64_t integer(int64_t first, int64_t last)
    {
        return std::uniform_int_distribution<int64_t>(first, last)(engine);
    }

    double real(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(engine);
    }

    // White noise in -1 .. 1.
    std::vector<float> noise(size_t length)
    {
        std::vector<float> samples(length);
        for (auto &x : samples)
            x = static_cast<float>(real(-1.0, 1.0));
        return samples;
    }

    // Any bit pattern: infinities, subnormals and not-a-number included.
    float anyFloat()
    {
        return std::bit_cast<float>(static_cast<uint32_t>(engine()));
    }

    // Ordinary numbers among which any bit pattern and the values at which branches turn are strewn.
    std::vector<float> mixed(size_t length)
    {
        constexpr float inf = std::numeric_limits<float>::infinity();
        constexpr float special[] = {
            0.0f,   -0.0f,           1.0f,   -1.0f, inf, -inf, std::numeric_limits<float>::quiet_NaN(),
            1e-45f, 1.17549435e-38f, 3.4e38f};
        std::vector<float> values(length);
        for (auto &x : values) {
            const auto kind = integer(0, 9);
            if (kind == 0)
                x = special[integer(0, 9)];
            else if (kind == 1)
                x = anyFloat();
            else
                x = static_cast<float>(real(-2.0, 2.0));
        }
        return values;
    }

private:
    std::mt19937_64 engine;
};

} // namespace support
