#include "support/bits.h"
#include "support/random.h"

#include <kett/KTvector.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace
{

using support::sameBits;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

double referenceSum(const float *vector, int32_t length)
{
    double sum = 0.0;
    for (int32_t i = 0; i < length; ++i)
        sum = sum + static_cast<double>(vector[i]) * static_cast<double>(vector[i]);
    return sum;
}

struct Largest {
    float value;
    int32_t index;
};

Largest referenceLargest(const float *vector, int32_t length)
{
    Largest largest{0.0f, 0};
    for (int32_t i = 0; i < length; ++i)
        if (std::abs(vector[i]) > largest.value)
            largest = {std::abs(vector[i]), i};
    return largest;
}

// Compares all four kernels on one vector.
void compare(const std::vector<float> &storage, size_t offset, int32_t length, float factor)
{
    const float *const vector = storage.data() + offset;
    EXPECT_TRUE(sameBits(FVectorSumOfSquares(vector, length), referenceSum(vector, length)));
    const auto largest = referenceLargest(vector, length);
    EXPECT_TRUE(sameBits(FVectorAbsMax(vector, length), largest.value));
    float maximum = -1.0f;
    EXPECT_EQ(FVectorArgAbsMax(vector, length, &maximum), largest.index);
    EXPECT_TRUE(sameBits(maximum, largest.value));
    auto scaled = storage;
    auto expected = storage;
    FVectorMulScalar(scaled.data() + offset, length, factor);
    for (int32_t i = 0; i < length; ++i)
        expected[offset + static_cast<size_t>(i)] = storage[offset + static_cast<size_t>(i)] * factor;
    EXPECT_TRUE(sameBits(scaled, expected));
}

} // namespace

TEST(VectorKernels, EqualThePlainLoopsForEveryLengthAndAlignment)
{
    support::Random random;
    for (int32_t length = 0; length <= 70; ++length)
        for (size_t offset = 0; offset < 5; ++offset)
            compare(random.noise(80), offset, length, static_cast<float>(random.real(-3.0, 3.0)));
    compare(random.noise(10000), 3, 9990, 0.1f);
}

TEST(VectorKernels, EqualThePlainLoopsOnAnyBits)
{
    support::Random random;
    for (int i = 0; i < 2000; ++i) {
        std::vector<float> storage(20);
        for (auto &x : storage)
            x = random.anyFloat();
        if (i % 2 == 0)
            storage[static_cast<size_t>(random.integer(0, 19))] = i % 4 == 0 ? notANumber : -infinity;
        compare(storage, 1, 18, random.anyFloat());
    }
}

TEST(VectorKernels, AnEmptyVectorGivesZero)
{
    float untouched = 5.0f;
    for (const int32_t length : {0, -1, INT32_MIN}) {
        FVectorMulScalar(&untouched, length, 2.0f);
        EXPECT_EQ(untouched, 5.0f);
        EXPECT_TRUE(sameBits(FVectorSumOfSquares(&untouched, length), 0.0));
        EXPECT_TRUE(sameBits(FVectorAbsMax(&untouched, length), 0.0f));
        float maximum = -1.0f;
        EXPECT_EQ(FVectorArgAbsMax(&untouched, length, &maximum), 0);
        EXPECT_TRUE(sameBits(maximum, 0.0f));
        EXPECT_EQ(FVectorArgAbsMax(nullptr, length, nullptr), 0);
    }
}

// 1e8 squared swallows a 1 added after it; two ones added first would not be lost together.
TEST(VectorSumOfSquares, AddsInIndexOrderInDouble)
{
    const float small = 0.75f;
    const std::vector<float> largeFirst{1e8f, small, small}, largeLast{small, small, 1e8f};
    EXPECT_EQ(FVectorSumOfSquares(largeFirst.data(), 3), (1e16 + 0.5625) + 0.5625);
    EXPECT_EQ(FVectorSumOfSquares(largeLast.data(), 3), (0.5625 + 0.5625) + 1e16);
    EXPECT_NE(FVectorSumOfSquares(largeFirst.data(), 3), FVectorSumOfSquares(largeLast.data(), 3));
}

// The square of FLT_MAX, and one beyond 24 bits.
TEST(VectorSumOfSquares, SquaresInDouble)
{
    const float largest = std::numeric_limits<float>::max();
    EXPECT_EQ(FVectorSumOfSquares(&largest, 1), static_cast<double>(largest) * static_cast<double>(largest));
    const float odd = 16777215.0f;
    EXPECT_EQ(FVectorSumOfSquares(&odd, 1), 281474943156225.0);
}

TEST(VectorAbsMax, TakesTheFirstOfEqualsAndNeverNotANumber)
{
    struct Case {
        std::vector<float> vector;
        float maximum;
        int32_t index;
    };
    const Case cases[] = {
        {{0.0f}, 0.0f, 0},
        {{-0.0f, 0.0f}, 0.0f, 0},
        {{1.0f, 2.0f, 3.0f}, 3.0f, 2},
        {{1.0f, -3.0f, 3.0f, -3.0f}, 3.0f, 1},
        {{3.0f, -3.0f}, 3.0f, 0},
        {{notANumber, 1.0f, notANumber, 2.0f, notANumber}, 2.0f, 3},
        {{notANumber, notANumber}, 0.0f, 0},
        {{notANumber, 0.0f}, 0.0f, 0},
        {{1.0f, -infinity, infinity}, infinity, 1},
        {{0.0f, std::numeric_limits<float>::denorm_min()}, std::numeric_limits<float>::denorm_min(), 1},
    };
    for (const auto &c : cases) {
        const auto length = static_cast<int32_t>(c.vector.size());
        float maximum = -1.0f;
        EXPECT_EQ(FVectorArgAbsMax(c.vector.data(), length, &maximum), c.index)
            << testing::PrintToString(c.vector);
        EXPECT_TRUE(sameBits(maximum, c.maximum)) << testing::PrintToString(c.vector);
        EXPECT_TRUE(sameBits(FVectorAbsMax(c.vector.data(), length), c.maximum))
            << testing::PrintToString(c.vector);
        EXPECT_EQ(FVectorArgAbsMax(c.vector.data(), length, nullptr), c.index);
    }
}

TEST(VectorMulScalar, MultipliesInFloat)
{
    std::vector<float> vector{1.0f, -2.0f, 0.1f, infinity, 3.0f};
    FVectorMulScalar(vector.data(), 4, 0.1f);
    EXPECT_TRUE(sameBits(vector, {0.1f, -2.0f * 0.1f, 0.1f * 0.1f, infinity, 3.0f}));
}
