// Power to decibels.
#include "ORVAcomplex_reference.h"
#include "support/bits.h"
#include "support/random.h"

#include <orva/orva.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

using support::sameBits;

namespace
{

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

// What the vectors of a transform of this length have to hold.
size_t roomFor(int32_t length)
{
    const size_t M = static_cast<size_t>(length) / 2;
    return std::max((M + 3) / 4 * 4, M + 1);
}

// The conversion by its steps: the groups of four in index order, then bin M.
void convertByTheSteps(int32_t length, const std::vector<float> &power, std::vector<float> &output,
                       const std::vector<float> *adjustment, double norm, double range)
{
    const size_t M = static_cast<size_t>(length) / 2;
    const float half = static_cast<float>(M);
    const float a = 1.0f / (half * half);
    const float b = 1.0f / std::sqrt(static_cast<float>(norm));
    const float floor = static_cast<float>(-range);
    for (size_t i = 0; i < (M + 3) / 4 * 4; ++i) {
        float x = power[i] * a;
        if (adjustment != nullptr)
            x = x * ((*adjustment)[i] * (*adjustment)[i]);
        x = x * b;
        float y = floor;
        if (x > 0.0f) {
            y = reference::fastLog(x) * 0.4342944622039795f;
            y = y * 10.0f;
        }
        output[i] = y > floor ? y : floor;
    }
    const float x = power[M] * a;
    double t = 1.0;
    if (adjustment != nullptr) {
        const float square = (*adjustment)[M] * (*adjustment)[M];
        t = static_cast<double>(square);
    }
    double result = -range;
    if (x > 0.0f) {
        const double y = 10.0 * std::log10(static_cast<double>(x) * t * static_cast<double>(b));
        result = y > -range ? y : -range;
    }
    output[M] = static_cast<float>(result);
}

// Powers and gains of every kind: ordinary ones, any bit pattern, and the values at which branches turn.
std::vector<float> mixed(support::Random &random, size_t size, double largest)
{
    const float special[] = {0.0f, -0.0f,      1.0f,   -1.0f,           inf,
                             -inf, notANumber, 1e-45f, 1.17549435e-38f, 3.4e38f};
    std::vector<float> values(size);
    for (auto &x : values) {
        const auto kind = random.integer(0, 9);
        if (kind == 0)
            x = special[random.integer(0, 9)];
        else if (kind == 1)
            x = random.anyFloat();
        else
            x = static_cast<float>(random.real(0.0, largest));
    }
    return values;
}

float decibelsOf(float power, int32_t length, size_t bin, double norm = 1.0, double range = 120.0)
{
    std::vector<float> powers(roomFor(length), power), output(powers.size());
    EXPECT_TRUE(ORVA_PSDtoDB(length, powers.data(), output.data(), nullptr, norm, range));
    return output[bin];
}

} // namespace

TEST(PowerToDecibels, IsThePlainLoopBitForBit)
{
    support::Random random;
    const double norms[] = {1.0,
                            0.0625,
                            3.7,
                            1e-300,
                            1e300,
                            0.0,
                            -0.0,
                            -1.0,
                            static_cast<double>(inf),
                            static_cast<double>(notANumber)};
    const double ranges[] = {120.0,
                             96.33,
                             0.0,
                             -0.0,
                             -20.0,
                             1e300,
                             static_cast<double>(inf),
                             -static_cast<double>(inf),
                             static_cast<double>(notANumber)};
    for (int round = 0; round < 2000; ++round) {
        const auto length = static_cast<int32_t>(random.integer(1, round % 20 == 0 ? 3000 : 70));
        const double norm = random.integer(0, 1) == 0 ? random.real(0.0, 4.0) : norms[random.integer(0, 9)];
        const double range = ranges[random.integer(0, 8)];
        const size_t room = roomFor(length);
        const double largest = static_cast<double>(length) * static_cast<double>(length);
        const auto power = mixed(random, room, largest), gains = mixed(random, room, 2.0);
        const auto *adjustment = random.integer(0, 1) == 0 ? nullptr : &gains;
        std::vector<float> output(room + 1, 77.0f), expected(output);
        convertByTheSteps(length, power, expected, adjustment, norm, range);
        ASSERT_TRUE(ORVA_PSDtoDB(length, power.data(), output.data(),
                                 adjustment == nullptr ? nullptr : gains.data(), norm, range));
        ASSERT_TRUE(sameBits(output, expected)) << "N " << length << ", norm " << norm << ", range " << range;
    }
}

TEST(PowerToDecibels, IsRelativeToHalfTheLengthSquared)
{
    for (int32_t length : {2, 8, 10, 1023, 1024})
        for (size_t bin = 0; bin <= static_cast<size_t>(length) / 2; ++bin) {
            const float full = static_cast<float>(length / 2) * static_cast<float>(length / 2);
            EXPECT_NEAR(decibelsOf(full, length, bin), 0.0, 1e-5);
            EXPECT_NEAR(decibelsOf(full * 1e-6f, length, bin), -60.0, 7e-5);
            EXPECT_EQ(decibelsOf(full * 1e-20f, length, bin), -120.0f);
            EXPECT_EQ(decibelsOf(0.0f, length, bin), -120.0f);
            EXPECT_EQ(decibelsOf(-0.0f, length, bin), -120.0f);
            EXPECT_EQ(decibelsOf(-full, length, bin), -120.0f);
            EXPECT_EQ(decibelsOf(notANumber, length, bin), -120.0f);
        }
}

TEST(PowerToDecibels, InfinitePowerIsFiniteBelowTheTopBin)
{
    EXPECT_NEAR(decibelsOf(inf, 16, 0), 1280.0 * std::log10(2.0), 7e-5);
    EXPECT_EQ(decibelsOf(inf, 16, 8), inf);
}

TEST(PowerToDecibels, TheNormDividesThroughItsSquareRoot)
{
    for (size_t bin : {0u, 3u, 7u, 8u}) {
        EXPECT_NEAR(decibelsOf(64.0f, 16, bin, 1e-4), 20.0, 7e-5);
        EXPECT_NEAR(decibelsOf(64.0f, 16, bin, 1e4), -20.0, 7e-5);
        EXPECT_EQ(decibelsOf(64.0f, 16, bin, -1.0), -120.0f);
        EXPECT_EQ(decibelsOf(64.0f, 16, bin, static_cast<double>(inf)), -120.0f);
        EXPECT_EQ(decibelsOf(64.0f, 16, bin, static_cast<double>(notANumber)), -120.0f);
        EXPECT_EQ(decibelsOf(0.0f, 16, bin, 0.0), -120.0f);
    }
    EXPECT_NEAR(decibelsOf(64.0f, 16, 0, 0.0), 1280.0 * std::log10(2.0), 7e-5);
    EXPECT_EQ(decibelsOf(64.0f, 16, 8, 0.0), inf);
}

TEST(PowerToDecibels, NothingLiesBelowTheFloor)
{
    support::Random random;
    for (double range : {120.0, 60.0, 0.0, -20.0}) {
        std::vector<float> power(516), output(516);
        for (auto &x : power)
            x = static_cast<float>(262144.0 * std::pow(10.0, random.real(-20.0, 1.0)));
        ASSERT_TRUE(ORVA_PSDtoDB(1024, power.data(), output.data(), nullptr, 1.0, range));
        for (size_t i = 0; i <= 512; ++i)
            ASSERT_GE(output[i], static_cast<float>(-range)) << i;
    }
}

TEST(PowerToDecibels, TheGainOfTheAdjustmentIsSquared)
{
    std::vector<float> power(12, 64.0f), output(12), adjustment(12, -0.1f);
    ASSERT_TRUE(ORVA_PSDtoDB(16, power.data(), output.data(), adjustment.data(), 1.0, 120.0));
    for (size_t i = 0; i <= 8; ++i)
        EXPECT_NEAR(output[i], -20.0, 7e-5) << i;
    adjustment.assign(12, 0.0f);
    ASSERT_TRUE(ORVA_PSDtoDB(16, power.data(), output.data(), adjustment.data(), 1.0, 120.0));
    for (size_t i = 0; i <= 8; ++i)
        EXPECT_EQ(output[i], -120.0f) << i;
}

TEST(PowerToDecibels, TheTopBinGoesByTheExactLogarithm)
{
    support::Random random;
    bool othersDiffer = false;
    for (int i = 0; i < 200; ++i) {
        const float power = static_cast<float>(random.real(1e-9, 1.0));
        const float exact = static_cast<float>(10.0 * std::log10(static_cast<double>(power)));
        EXPECT_EQ(decibelsOf(power, 2, 1), exact); // M is 1, so the scale is 1
        othersDiffer |= decibelsOf(power, 2, 0) != exact;
    }
    EXPECT_TRUE(othersDiffer);
}

TEST(PowerToDecibels, OfOneSampleIsTheTopBinAlone)
{
    const float power[2] = {1e-30f, 1.0f};
    float output[2] = {77.0f, 77.0f};
    EXPECT_TRUE(ORVA_PSDtoDB(1, power, output, nullptr, 1.0, 120.0));
    EXPECT_EQ(output[0], inf) << "the power is relative to zero";
    EXPECT_EQ(output[1], 77.0f);
}

TEST(PowerToDecibels, TheOutputMayBeThePower)
{
    support::Random random;
    for (int32_t length = 1; length <= 40; ++length) {
        const size_t room = roomFor(length), bins = static_cast<size_t>(length) / 2 + 1;
        auto power = mixed(random, room, 400.0);
        std::vector<float> output(room);
        ASSERT_TRUE(ORVA_PSDtoDB(length, power.data(), output.data(), nullptr, 1.0, 120.0));
        ASSERT_TRUE(ORVA_PSDtoDB(length, power.data(), power.data(), nullptr, 1.0, 120.0));
        power.resize(bins);
        output.resize(bins);
        EXPECT_TRUE(sameBits(power, output)) << length;
    }
}

TEST(PowerToDecibels, UnalignedVectorsAreServedTheSame)
{
    support::Random random;
    const size_t room = roomFor(200);
    const auto power = mixed(random, room + 1, 40000.0), gains = mixed(random, room + 1, 2.0);
    const std::vector<float> alignedPower(power.begin() + 1, power.end()),
        alignedGains(gains.begin() + 1, gains.end());
    std::vector<float> output(room + 1), expected(room);
    ASSERT_TRUE(ORVA_PSDtoDB(200, power.data() + 1, output.data() + 1, gains.data() + 1, 1.0, 120.0));
    ASSERT_TRUE(ORVA_PSDtoDB(200, alignedPower.data(), expected.data(), alignedGains.data(), 1.0, 120.0));
    EXPECT_TRUE(sameBits(std::vector<float>(output.begin() + 1, output.end()), expected));
}

TEST(PowerToDecibels, RefusalsWriteNothing)
{
    std::vector<float> power(12, 64.0f), output(12, 77.0f);
    for (int32_t length : {0, -1, -16, INT32_MIN})
        EXPECT_FALSE(ORVA_PSDtoDB(length, power.data(), output.data(), nullptr, 1.0, 120.0));
    EXPECT_FALSE(ORVA_PSDtoDB(16, nullptr, output.data(), nullptr, 1.0, 120.0));
    EXPECT_FALSE(ORVA_PSDtoDB(16, power.data(), nullptr, nullptr, 1.0, 120.0));
    EXPECT_FALSE(ORVA_PSDtoDB(16, nullptr, nullptr, nullptr, 1.0, 120.0));
    EXPECT_EQ(output, std::vector<float>(12, 77.0f));
    EXPECT_EQ(power, std::vector<float>(12, 64.0f));
}
