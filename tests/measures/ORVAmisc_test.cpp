#include "support/bits.h"
#include "support/random.h"
#include "support/recording.h"

#include <orva/ORVAmisc.h>

#include <algorithm>
#include <complex>
#include <limits>
#include <numbers>

using support::Random;
using support::sameBits;

namespace
{

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

int32_t lengthOf(const std::vector<float> &frame)
{
    return static_cast<int32_t>(frame.size());
}

float energy(const std::vector<float> &frame)
{
    return ORVA_CalcEnergy(frame.data(), lengthOf(frame));
}

float energyByDefinition(const std::vector<float> &frame)
{
    float sum = 0, squares = 0;
    for (const float x : frame) {
        const float square = x * x;
        sum = sum + x;
        squares = squares + square;
    }
    const auto n = static_cast<float>(frame.size());
    const float mean = sum / n;
    const float meanSquare = squares / n;
    const float squaredMean = mean * mean;
    const float v = meanSquare - squaredMean;
    return v > 0 ? static_cast<float>(10.0 * std::log10(double{v} / 0.32768)) : 0.0f;
}

float crossings(const std::vector<float> &frame)
{
    return ORVA_CalcZeroCrossRate(frame.data(), lengthOf(frame));
}

std::vector<float> withoutDC(const std::vector<float> &input)
{
    std::vector<float> output(input.size());
    ORVA_RemoveDC(input.data(), output.data(), lengthOf(input));
    return output;
}

std::vector<float> withoutDCByDefinition(const std::vector<float> &x)
{
    std::vector<double> y(x.size());
    std::vector<float> output(x.size());
    const auto at = [](const auto &v, size_t n, size_t back) { return n < back ? 0.0 : double{v[n - back]}; };
    for (size_t n = 0; n < x.size(); ++n) {
        double sum = 1.9059464931488037 * at(y, n, 1);
        sum = sum + -0.9114024043083191 * at(y, n, 2);
        sum = sum + 0.9272743463516235 * at(x, n, 0);
        sum = sum + -1.8544940948486328 * at(x, n, 1);
        sum = sum + 0.9272743463516235 * at(x, n, 2);
        y[n] = sum;
        output[n] = static_cast<float>(sum);
    }
    return output;
}

// Real speech, its first and last samples quiet, cut into frames of 10 ms.
std::vector<std::vector<float>> speechFrames()
{
    const auto samples = support::recording();
    std::vector<std::vector<float>> frames;
    for (size_t start = 0; start + 480 <= samples.size(); start += 480)
        frames.emplace_back(samples.begin() + static_cast<ptrdiff_t>(start),
                            samples.begin() + static_cast<ptrdiff_t>(start) + 480);
    return frames;
}

} // namespace

TEST(FrameEnergy, HasItsWorkedValues)
{
    EXPECT_EQ(energy({1, -1, 1, -1, 1, -1}), static_cast<float>(10.0 * std::log10(1.0 / 0.32768)));
    EXPECT_NEAR(energy({1, -1, 1, -1}), 4.85, 0.005);
}

TEST(FrameEnergy, IsZeroWithoutVariance)
{
    EXPECT_EQ(energy({0.25f, 0.25f, 0.25f}), 0.0f);
    EXPECT_EQ(energy({0, 0, 0, 0}), 0.0f);
    EXPECT_EQ(energy({3}), 0.0f);
    EXPECT_EQ(energy({1, notANumber, 2}), 0.0f);
    EXPECT_EQ(energy({std::numeric_limits<float>::infinity(), 1}), 0.0f) << "infinity less infinity";
}

TEST(FrameEnergy, IsZeroForALengthOfZeroOrBelowAndReadsNothing)
{
    for (const int32_t length : {0, -1, std::numeric_limits<int32_t>::min()})
        EXPECT_EQ(ORVA_CalcEnergy(nullptr, length), 0.0f) << length;
}

TEST(FrameEnergy, OfSpeechEqualsTheDefinitionAndFollowsTheVoice)
{
    float loudest = -1000, quietest = 1000;
    for (const auto &frame : speechFrames()) {
        const float dB = energy(frame);
        ASSERT_TRUE(sameBits(dB, energyByDefinition(frame)));
        loudest = std::max(loudest, dB);
        quietest = std::min(quietest, dB);
    }
    EXPECT_GT(loudest, -20.0f);
    EXPECT_LT(quietest, -60.0f);
}

TEST(FrameEnergy, EqualsTheDefinitionBitForBit)
{
    Random random;
    for (int round = 0; round < 500; ++round) {
        auto frame = random.noise(static_cast<size_t>(random.integer(1, 300)));
        const auto offset = static_cast<float>(random.real(-3, 3));
        for (float &x : frame)
            x += offset;
        ASSERT_TRUE(sameBits(energy(frame), energyByDefinition(frame))) << frame.size();
    }
}

TEST(ZeroCrossings, HaveTheirWorkedValues)
{
    EXPECT_EQ(crossings({1, -1, 1, -1}), 0.75f);
    EXPECT_EQ(crossings({1, 0, -1}), 0.0f);
    EXPECT_EQ(crossings({5}), 0.0f);
    EXPECT_EQ(crossings({1e-30f, -1e-30f}), 0.0f) << "the product underflows";
    EXPECT_EQ(crossings({1, notANumber, -1}), 0.0f);
}

TEST(ZeroCrossings, ALengthOfZeroDividesZeroByZero)
{
    const float sample = 1;
    EXPECT_TRUE(std::isnan(ORVA_CalcZeroCrossRate(&sample, 0)));
    EXPECT_TRUE(sameBits(ORVA_CalcZeroCrossRate(&sample, -3), -0.0f));
}

TEST(ZeroCrossings, OfSpeechEqualACount)
{
    for (const auto &frame : speechFrames()) {
        int count = 0;
        for (size_t i = 1; i < frame.size(); ++i)
            count += (frame[i - 1] > 0 && frame[i] < 0) || (frame[i - 1] < 0 && frame[i] > 0);
        ASSERT_EQ(crossings(frame), static_cast<float>(count) / 480.0f);
    }
}

TEST(RemoveDC, SettlesAtOneHundredthOfAnOffset)
{
    const auto output = withoutDC(std::vector<float>(5000, 1.0f));
    EXPECT_NEAR(output.back(), 0.010007, 5e-7);
    EXPECT_GT(output.front(), 0.9f);
}

TEST(RemoveDC, CrossesMinus3dBAtTheStatedPartOfTheRate)
{
    std::vector<float> impulse(20000, 0.0f);
    impulse[0] = 1.0f;
    const auto response = withoutDC(impulse);
    const auto gain = [&](double frequency) {
        std::complex<double> sum = 0;
        for (size_t n = 0; n < response.size(); ++n)
            sum += double{response[n]} *
                   std::polar(1.0, -2 * std::numbers::pi * frequency * static_cast<double>(n));
        return 20 * std::log10(std::abs(sum));
    };
    EXPECT_LT(gain(0.0105), -3.0);
    EXPECT_GT(gain(0.0115), -3.0);
    EXPECT_NEAR(gain(0.0), 20 * std::log10(0.010007), 0.01);
}

TEST(RemoveDC, EqualsTheDefinitionBitForBitAlsoInPlace)
{
    Random random;
    for (const size_t length : {1u, 2u, 3u, 17u, 1000u}) {
        auto samples = random.noise(length);
        const auto expected = withoutDCByDefinition(samples);
        EXPECT_TRUE(sameBits(withoutDC(samples), expected)) << length;
        ORVA_RemoveDC(samples.data(), samples.data(), lengthOf(samples));
        EXPECT_TRUE(sameBits(samples, expected)) << length;
    }
    const auto speech = support::recording();
    EXPECT_TRUE(sameBits(withoutDC(speech), withoutDCByDefinition(speech)));
}

TEST(RemoveDC, EachCallStartsFromSilence)
{
    const std::vector<float> half(100, 1.0f), whole(200, 1.0f);
    const auto second = withoutDC(half);
    const auto once = withoutDC(whole);
    EXPECT_EQ(second.front(), once.front());
    EXPECT_NE(second.front(), once[100]);
}

TEST(RemoveDC, ALengthOfZeroOrBelowDoesNothing)
{
    for (const int32_t length : {0, -1, std::numeric_limits<int32_t>::min()}) {
        float output = 7;
        const float input = 1;
        ORVA_RemoveDC(&input, &output, length);
        EXPECT_EQ(output, 7) << length;
    }
}
