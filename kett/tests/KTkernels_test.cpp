// The kernels over vectors against the definitions, to the last bit: every count to 300 and every place in a
// vector where an array can begin.
#include "kernels/kernels.h"
#include "support/bits.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace
{

using namespace kett;
using support::Random;
using support::sameBits;

constexpr int32_t mostElements = 300;

// Floats that meet each branch of a definition: any bits, sound, ties of 16-bit steps, few values that are
// often equal, limits.
float someFloat(Random &random)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float special[] = {0.0f,      -0.0f,     1.0f,     -1.0f,
                                 0.99999f,  -1.00001f, 1e-42f,   3e38f,
                                 -infinity, infinity,  0.99998f, std::numeric_limits<float>::quiet_NaN()};
    switch (random.integer(0, 4)) {
    case 0:
        return random.anyFloat();
    case 1:
        return static_cast<float>(random.real(-1.1, 1.1));
    case 2:
        return static_cast<float>(random.integer(-65540, 65540)) / 65536.0f;
    case 3:
        return static_cast<float>(random.integer(-3, 3));
    default:
        return special[random.integer(0, std::ssize(special) - 1)];
    }
}

template <class Element> struct Case {
    std::vector<Element> input; // what stands around the array is no part of it
    int32_t offset;
    int32_t count;

    const Element *array() const
    {
        return input.data() + offset;
    }
};

constexpr int32_t margin = 8;

// Calls `check` for each count and offset, with arrays of elements that `some` gives.
template <class Element, class Some, class Check> void eachCase(Some some, Check check)
{
    for (int32_t count = -1; count <= mostElements; ++count) {
        for (int32_t offset = 0; offset < margin; ++offset) {
            Case<Element> c = {std::vector<Element>(static_cast<size_t>(mostElements + 2 * margin)), offset,
                               count};
            std::generate(c.input.begin(), c.input.end(), some);
            check(c);
            if (testing::Test::HasFailure())
                FAIL() << count << " elements from " << offset;
        }
    }
}

} // namespace

TEST(WideKernels, MultiplyLikeTheDefinition)
{
    Random random;
    eachCase<float>([&] { return someFloat(random); },
                    [&](const Case<float> &c) {
                        const float factor = someFloat(random);
                        auto wideOutput = c.input;
                        auto plainOutput = c.input;
                        wide::multiply(wideOutput.data() + c.offset, c.count, factor);
                        plain::multiply(plainOutput.data() + c.offset, c.count, factor);
                        EXPECT_TRUE(sameBits(wideOutput, plainOutput)) << factor;
                    });
}

TEST(WideKernels, FindThePeakLikeTheDefinition)
{
    Random random;
    const auto check = [](const Case<float> &c) {
        const Peak expected = plain::findPeak(c.array(), c.count);
        const Peak found = wide::findPeak(c.array(), c.count);
        EXPECT_EQ(found.place, expected.place);
        EXPECT_TRUE(sameBits(found.magnitude, expected.magnitude));
        EXPECT_TRUE(sameBits(wide::largestMagnitude(c.array(), c.count), expected.magnitude));
    };
    eachCase<float>([&] { return someFloat(random); }, check);
    eachCase<float>([&] { return static_cast<float>(random.real(-1.0, 1.0)); }, check);
    eachCase<float>([&] { return static_cast<float>(random.integer(-2, 2)); }, check);
    eachCase<float>([] { return std::numeric_limits<float>::quiet_NaN(); }, check);
}

TEST(WideKernels, ConvertToSixteenBitsLikeTheDefinition)
{
    Random random;
    eachCase<float>([&] { return someFloat(random); },
                    [](const Case<float> &c) {
                        std::vector<int16_t> wideOutput(c.input.size(), int16_t{-7});
                        auto plainOutput = wideOutput;
                        wide::toWord16(c.array(), wideOutput.data() + margin - c.offset, c.count);
                        plain::toWord16(c.array(), plainOutput.data() + margin - c.offset, c.count);
                        EXPECT_EQ(wideOutput, plainOutput);
                    });
}

TEST(WideKernels, ConvertFromSixteenBitsLikeTheDefinition)
{
    Random random;
    const auto someWord = [&] { return static_cast<int16_t>(random.integer(INT16_MIN, INT16_MAX)); };
    eachCase<int16_t>(someWord, [](const Case<int16_t> &c) {
        std::vector<float> wideOutput(c.input.size(), -7.0f);
        auto plainOutput = wideOutput;
        wide::fromWord16(c.array(), wideOutput.data() + margin - c.offset, c.count);
        plain::fromWord16(c.array(), plainOutput.data() + margin - c.offset, c.count);
        EXPECT_TRUE(sameBits(wideOutput, plainOutput));
    });
}
