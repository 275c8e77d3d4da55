// Biquads among the smallest doubles, as integers, against the plain form: outputs with the signs of their zeros, memories
// and positions, bit by bit.
#include "filter/ORVAfilter_silence.h"
#include "support/bits.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <vector>

using namespace orva;

using support::Random;
using support::sameBits;

namespace
{

double anySign(Random &random, double x)
{
    return random.integer(0, 1) == 0 ? x : -x;
}

// Integers of any number of bits up to `bits`, as the smallest doubles.
double anyTiny(Random &random, int64_t bits)
{
    const auto limit = int64_t{1} << random.integer(0, bits);
    return anySign(random, std::bit_cast<double>(random.integer(0, limit)));
}

// Mostly of the size of filters; some of few digits, whose products often lie half way between two units.
double anyFactor(Random &random)
{
    switch (random.integer(0, 13)) {
    case 0:
        return anySign(random, 0.0);
    case 1:
        return anyTiny(random, 52);
    case 2:
        return random.real(-1.0, 1.0) * 0x1p-30;
    case 3:
        return anySign(random, std::ldexp(1.0, static_cast<int>(random.integer(-80, 11))));
    case 7: // a product with an odd integer below 2^20 may miss a half by less than a double tells
        return (static_cast<double>(random.integer(-63, 63)) + 0.5) /
               static_cast<double>(random.integer(1, 63));
    case 13: // silence in, but none out
        return random.integer(0, 5) == 0 ? anySign(random, 1e300) : random.real(-1.0, 1.0);
    case 4:
    case 5:
    case 6:
        return static_cast<double>(random.integer(-63, 63)) * 0x1p-4;
    default:
        return random.real(-2.0, 2.0);
    }
}

struct Cascade {
    Cascade(size_t channels, size_t sections)
        : memory(biquadSlots * channels * sections), coefs(biquadDoubles * sections)
    {
        state.numBiquads = static_cast<int32_t>(sections);
    }

    Cascade(const Cascade &) = default;

    _DFIISOSstate &bound()
    {
        state.memory = memory.data();
        state.coefs = coefs.data();
        return state;
    }

    std::vector<double> memory, coefs;
    _DFIISOSstate state = {};
};

Frames allOf(const std::vector<float> &input, std::vector<float> &output, size_t channels)
{
    return {input.data(),
            output.data(),
            0,
            static_cast<int64_t>(input.size()) - static_cast<int64_t>(channels),
            static_cast<int64_t>(channels),
            channels};
}

testing::AssertionResult sameAfter(Cascade &plain, Cascade &units, const std::vector<float> &input,
                                   size_t channels)
{
    std::vector<float> expected(input.size()), actual = input; // this one in place
    kernelsAt<FilterKernels>(Level::plain).biquads(plain.bound(), allOf(input, expected, channels));
    runBiquadsInUnits(units.bound(), allOf(actual, actual, channels));
    if (plain.state.position != units.state.position)
        return testing::AssertionFailure() << "position " << units.state.position;
    if (const auto same = sameBits(units.memory, plain.memory); !same)
        return same;
    return sameBits(actual, expected);
}

std::vector<float> zeros(Random &random, size_t count)
{
    std::vector<float> block(count);
    for (float &x : block)
        x = random.integer(0, 3) == 0 ? -0.0f : 0.0f;
    return block;
}

} // namespace

TEST(BiquadSilence, HasTheBitsOfThePlainFormWhateverTheFactors)
{
    Random random;
    for (int repeat = 0; repeat < 400; ++repeat) {
        const auto channels = static_cast<size_t>(random.integer(1, 3));
        Cascade plain(channels, static_cast<size_t>(random.integer(1, 5)));
        const int64_t bits = random.integer(1, 52);
        for (double &w : plain.memory)
            w = anyTiny(random, bits);
        for (double &c : plain.coefs)
            c = anyFactor(random);
        if (random.integer(0, 9) == 0)
            plain.coefs[0] = std::numeric_limits<double>::quiet_NaN();
        Cascade units = plain;
        for (int block = 0; block < 4; ++block) {
            auto input = zeros(random, channels * static_cast<size_t>(random.integer(0, 60)));
            if (!input.empty() && random.integer(0, 3) == 0)
                input[static_cast<size_t>(random.integer(0, std::ssize(input) - 1))] = 1e-30f;
            ASSERT_TRUE(sameAfter(plain, units, input, channels)) << "block " << block;
        }
    }
}

// Poles of any radius and angle: noise, then silence until long after the memories have got there, in any blocks.
TEST(BiquadSilence, HasTheBitsOfThePlainFormFromTheNoiseOn)
{
    Random random;
    for (int repeat = 0; repeat < 12; ++repeat) {
        const auto channels = static_cast<size_t>(random.integer(1, 2));
        Cascade plain(channels, static_cast<size_t>(random.integer(1, 3)));
        for (size_t i = 0; i < plain.coefs.size(); i += biquadDoubles) {
            const double radius = random.real(0.3, 0.9), angle = random.real(0.0, 3.1);
            const double record[] = {-2.0 * radius * std::cos(angle), radius * radius, random.real(0.0, 1.0),
                                     random.real(-2.0, 2.0), random.real(-1.0, 1.0)};
            std::copy(std::begin(record), std::end(record), plain.coefs.begin() + static_cast<int64_t>(i));
        }
        Cascade units = plain;
        ASSERT_TRUE(sameAfter(plain, units, random.noise(channels * 100), channels));
        for (int64_t left = 12000; left > 0;) {
            const int64_t frames = random.integer(0, 9000);
            ASSERT_TRUE(
                sameAfter(plain, units, zeros(random, channels * static_cast<size_t>(frames)), channels))
                << left << " frames before the end";
            left -= frames;
        }
        ASSERT_TRUE(sameAfter(plain, units, random.noise(channels * 100), channels));
    }
}
