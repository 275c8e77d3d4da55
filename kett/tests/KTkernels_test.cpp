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

// Every number of coefficients that is known, and those around; states and samples of any value, the state that
// no sample changes too.
TEST(WideKernels, FilterLikeTheDefinition)
{
    Random random;
    for (int32_t coefficients = 1; coefficients <= 14; ++coefficients)
        for (int32_t count = 0; count <= 100; count += 1 + count / 5) {
            const auto length = static_cast<size_t>(coefficients);
            std::vector<double> a(length), b(length), state(length + 1);
            std::vector<float> input(static_cast<size_t>(count));
            for (size_t k = 0; k < length; ++k) {
                a[k] = random.real(-0.1, 0.1);
                b[k] = random.real(-1.0, 1.0);
            }
            for (double &s : state)
                s = static_cast<double>(count % 2 == 0 ? someFloat(random) : 0.0f);
            for (float &x : input)
                x = count % 3 == 0 ? someFloat(random) : static_cast<float>(random.real(-1.0, 1.0));
            std::vector<double> output(input.size() + 1, 7.0), expected = output, expectedState = state;
            plain::filterBlock(a.data(), b.data(), coefficients, expectedState.data(), input.data(),
                               expected.data(), count);
            wide::filterBlock(a.data(), b.data(), coefficients, state.data(), input.data(), output.data(),
                              count);
            ASSERT_TRUE(sameBits(output, expected))
                << coefficients << " coefficients, " << count << " samples";
            ASSERT_TRUE(sameBits(state, expectedState))
                << coefficients << " coefficients, " << count << " samples";
        }
}
