#include "support/bits.h"
#include "support/random.h"

#include <kett/KTutils.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <chrono>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr float infinity = std::numeric_limits<float>::infinity();

int16_t toWord(float sample)
{
    int16_t word = 12345;
    KTUTILS_ConvertIEEEFloatToWord16(&sample, &word, 1);
    return word;
}

// Nearest, ties to even, written with floor alone.
int16_t reference(float sample)
{
    if (std::isnan(sample))
        return 0;
    const long double scaled = 32768.0L * static_cast<long double>(sample);
    long double nearest = std::floor(scaled);
    const long double rest = scaled - nearest;
    if (rest > 0.5L || (rest == 0.5L && std::fmod(nearest, 2.0L) != 0.0L))
        nearest += 1.0L;
    return static_cast<int16_t>(std::max(-32768.0L, std::min(32767.0L, nearest)));
}

} // namespace

TEST(UtilsSleep, TakesAtLeastTheTime)
{
    for (const int32_t time : {1, 7, 30}) {
        const auto start = Clock::now();
        KTUTILS_sleep_msec(time);
        EXPECT_GE(Clock::now() - start, milliseconds(time));
    }
}

TEST(UtilsSleep, ReturnsAtOnceForZeroOrLess)
{
    const auto start = Clock::now();
    for (const int32_t time : {0, -1, -1000, INT32_MIN})
        KTUTILS_sleep_msec(time);
    EXPECT_LT(Clock::now() - start, milliseconds(500));
}

TEST(UtilsConversion, RoundsToNearestTiesToEvenAndLimits)
{
    struct Case {
        double word; // what the sample stands for, in steps of 1 / 32768
        int16_t expected;
    };
    constexpr Case cases[] = {
        {0.0, 0},           {-0.0, 0},           {0.5, 0},           {-0.5, 0},
        {0.75, 1},          {-0.75, -1},         {1.5, 2},           {-1.5, -2},
        {2.5, 2},           {-2.5, -2},          {2.4990, 2},        {2.5010, 3},
        {100.25, 100},      {32766.0, 32766},    {32766.5, 32766},   {32766.75, 32767},
        {32767.0, 32767},   {32767.5, 32767},    {32768.0, 32767},   {1e9, 32767},
        {-32767.5, -32768}, {-32767.25, -32767}, {-32768.0, -32768}, {-32768.5, -32768},
        {-32769.0, -32768}, {-1e9, -32768},
    };
    for (const auto &c : cases)
        EXPECT_EQ(toWord(static_cast<float>(c.word / 32768.0)), c.expected) << c.word;
    EXPECT_EQ(toWord(1.0f), 32767);
    EXPECT_EQ(toWord(-1.0f), -32768);
    EXPECT_EQ(toWord(infinity), 32767);
    EXPECT_EQ(toWord(-infinity), -32768);
    EXPECT_EQ(toWord(std::numeric_limits<float>::max()), 32767);
    EXPECT_EQ(toWord(std::numeric_limits<float>::denorm_min()), 0);
    EXPECT_EQ(toWord(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(toWord(-std::numeric_limits<float>::quiet_NaN()), 0);
}

TEST(UtilsConversion, EqualsTheDefinitionInEveryRoundingMode)
{
    support::Random random;
    std::vector<float> input;
    for (int i = 0; i < 20000; ++i) {
        input.push_back(random.anyFloat());
        input.push_back(static_cast<float>(random.real(-1.1, 1.1)));
        input.push_back(static_cast<float>(random.integer(-65540, 65540)) / 65536.0f); // every second a tie
    }
    std::vector<int16_t> output(input.size());
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        std::fesetround(mode);
        KTUTILS_ConvertIEEEFloatToWord16(input.data(), output.data(), static_cast<int32_t>(input.size()));
        std::fesetround(FE_TONEAREST);
        for (size_t i = 0; i < input.size(); ++i)
            ASSERT_EQ(output[i], reference(input[i])) << "mode " << mode << ", sample " << input[i];
    }
}

TEST(UtilsConversion, SixteenBitsToFloatIsExactAndBackIsTheIdentity)
{
    std::vector<int16_t> words(65536);
    std::iota(words.begin(), words.end(), int16_t{-32768});
    std::vector<float> samples(words.size());
    KTUTILS_ConvertWord16ToIEEEFloat(words.data(), samples.data(), 65536);
    for (size_t i = 0; i < words.size(); ++i)
        ASSERT_TRUE(support::sameBits(samples[i], static_cast<float>(words[i] / 32768.0))) << words[i];
    std::vector<int16_t> back(words.size());
    KTUTILS_ConvertIEEEFloatToWord16(samples.data(), back.data(), 65536);
    EXPECT_EQ(back, words);
}

TEST(UtilsConversion, WritesCountSamplesAndNoMore)
{
    for (const int32_t count : {INT32_MIN, -1, 0, 1, 3, 7, 8, 9, 31}) {
        const std::vector<float> samples(32, 0.25f);
        const std::vector<int16_t> words(32, int16_t{8192});
        std::vector<int16_t> toWords(32, int16_t{-7});
        std::vector<float> toSamples(32, -7.0f);
        KTUTILS_ConvertIEEEFloatToWord16(samples.data(), toWords.data(), count);
        KTUTILS_ConvertWord16ToIEEEFloat(words.data(), toSamples.data(), count);
        for (int32_t i = 0; i < 32; ++i) {
            EXPECT_EQ(toWords[static_cast<size_t>(i)], i < count ? 8192 : -7) << count;
            EXPECT_EQ(toSamples[static_cast<size_t>(i)], i < count ? 0.25f : -7.0f) << count;
        }
    }
}
