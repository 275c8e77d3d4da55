#include "support/bits.h"
#include "support/random.h"

#include <kett/KTfilter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace
{

using support::sameBits;
using Doubles = std::vector<double>;

struct Filter {
    Doubles a, b;

    int32_t count() const
    {
        return static_cast<int32_t>(b.size());
    }
};

// Stable for any order: the weights of the past outputs sum to less than 1.
Filter randomFilter(support::Random &random, size_t count)
{
    Filter filter{Doubles(count), Doubles(count)};
    for (size_t k = 0; k < count; ++k) {
        filter.b[k] = random.real(-1.0, 1.0);
        filter.a[k] = k == 0 ? 1.0 : random.real(-0.9, 0.9) / static_cast<double>(count);
    }
    return filter;
}

Doubles run(const Filter &filter, const std::vector<float> &input, const std::vector<int32_t> &cuts,
            Doubles &state)
{
    Doubles output(input.size(), std::nan(""));
    size_t start = 0;
    for (size_t i = 0; start < input.size(); ++i) {
        const int32_t count = std::min(cuts[i % cuts.size()], static_cast<int32_t>(input.size() - start));
        FilterBlockFloat(filter.a.data(), filter.b.data(), filter.count(), state.data(), nullptr,
                         input.data() + start, output.data() + start, count);
        start += static_cast<size_t>(std::max(count, 0));
    }
    return output;
}

// y = b[0] x + s[0];  s[k] = (b[k+1] x + s[k+1]) - a[k+1] y
Doubles reference(const Filter &filter, const std::vector<float> &input, Doubles &state)
{
    Doubles output;
    for (const float sample : input) {
        const double x = static_cast<double>(sample);
        const double y = filter.b[0] * x + state[0];
        for (size_t k = 0; k + 1 < filter.b.size(); ++k) {
            const double forward = filter.b[k + 1] * x + state[k + 1];
            const double back = filter.a[k + 1] * y;
            state[k] = forward - back;
        }
        output.push_back(y);
    }
    return output;
}

} // namespace

TEST(FilterBlock, EqualsTheRecurrenceBitForBit)
{
    support::Random random;
    for (size_t count = 1; count <= 24; ++count) {
        const auto filter = randomFilter(random, count);
        const auto input = random.noise(300);
        Doubles state(count + 1), expectedState(count + 1);
        const auto output = run(filter, input, {300}, state);
        EXPECT_TRUE(sameBits(output, reference(filter, input, expectedState))) << count << " coefficients";
        EXPECT_TRUE(sameBits(state, expectedState)) << count << " coefficients";
    }
}

TEST(FilterBlock, AnyCutOfTheStreamGivesTheSameBits)
{
    support::Random random;
    const auto filter = randomFilter(random, 9);
    const auto input = random.noise(1000);
    Doubles wholeState(10);
    const auto whole = run(filter, input, {1000}, wholeState);
    for (const std::vector<int32_t> &cuts :
         {std::vector<int32_t>{1}, {2}, {7}, {64}, {0, 1, 500, 2}, {-3, 5}, {999, 1}}) {
        Doubles state(10);
        EXPECT_TRUE(sameBits(run(filter, input, cuts, state), whole)) << testing::PrintToString(cuts);
        EXPECT_TRUE(sameBits(state, wholeState)) << testing::PrintToString(cuts);
    }
}

// The definition as a sum over past inputs and outputs, in long double.
TEST(FilterBlock, IsTheDifferenceEquation)
{
    support::Random random;
    const auto filter = randomFilter(random, 7);
    const auto input = random.noise(500);
    Doubles state(8);
    const auto output = run(filter, input, {500}, state);
    std::vector<long double> y(input.size());
    for (size_t n = 0; n < input.size(); ++n) {
        for (size_t k = 0; k < 7 && k <= n; ++k) {
            y[n] += static_cast<long double>(filter.b[k]) * static_cast<long double>(input[n - k]);
            if (k > 0)
                y[n] -= static_cast<long double>(filter.a[k]) * y[n - k];
        }
        EXPECT_NEAR(output[n], static_cast<double>(y[n]), 1e-14) << n;
    }
}

// a = 1, -0.5;  b = 1, 0.25:  an impulse gives 1, 0.75, 0.375, ...
TEST(FilterBlock, WorkedImpulseResponse)
{
    Doubles state(3);
    EXPECT_EQ(run({{1.0, -0.5}, {1.0, 0.25}}, {1.0f, 0.0f, 0.0f, 0.0f}, {4}, state),
              (Doubles{1.0, 0.75, 0.375, 0.1875}));
    EXPECT_EQ(state, (Doubles{0.09375, 0.0, 0.0}));
}

TEST(FilterBlock, OneCoefficientIsAGain)
{
    Doubles state(2);
    EXPECT_EQ(run({{1.0}, {0.5}}, {1.0f, -2.0f, 3.0f}, {3}, state), (Doubles{0.5, -1.0, 1.5}));
    EXPECT_EQ(state, (Doubles{0.0, 0.0}));
}

TEST(FilterBlock, NoSamplesChangeNothing)
{
    const Doubles a{1.0, 0.5}, b{1.0, 0.5};
    for (const int32_t samples : {0, -1, INT32_MIN})
        for (const int32_t coefficients : {2, 0, -1}) {
            Doubles state{1.0, 2.0, 3.0};
            const float input = 1.0f;
            double output = 7.0;
            FilterBlockFloat(a.data(), b.data(), coefficients, state.data(), nullptr, &input, &output,
                             samples);
            EXPECT_EQ(output, 7.0);
            EXPECT_EQ(state, (Doubles{1.0, 2.0, 3.0}));
        }
}

TEST(FilterBlock, WithoutCoefficientsWritesZeros)
{
    for (const int32_t coefficients : {0, -1, INT32_MIN}) {
        const std::vector<float> input{1.0f, 2.0f, 3.0f};
        Doubles output{7.0, 7.0, 7.0};
        FilterBlockFloat(nullptr, nullptr, coefficients, nullptr, nullptr, input.data(), output.data(), 2);
        EXPECT_TRUE(sameBits(output, {0.0, 0.0, 7.0}));
    }
}

TEST(FilterBlock, LeavesTheSecondStateAndTheLeadingOneAlone)
{
    const Doubles a{std::nan(""), -0.5}, b{1.0, 0.25};
    Doubles first(3), second{4.0, 5.0, 6.0};
    const std::vector<float> input{1.0f, 0.0f};
    Doubles output(2);
    FilterBlockFloat(a.data(), b.data(), 2, first.data(), second.data(), input.data(), output.data(), 2);
    EXPECT_EQ(output, (Doubles{1.0, 0.75}));
    EXPECT_EQ(second, (Doubles{4.0, 5.0, 6.0}));
}

TEST(FilterBlock, CarriesInfinitiesAsTheRecurrenceDoes)
{
    support::Random random;
    const auto filter = randomFilter(random, 5);
    auto input = random.noise(40);
    input[10] = std::numeric_limits<float>::infinity();
    Doubles state(6), expectedState(6);
    const auto output = run(filter, input, {40}, state);
    EXPECT_TRUE(sameBits(output, reference(filter, input, expectedState)));
    EXPECT_TRUE(sameBits(state, expectedState));
}
