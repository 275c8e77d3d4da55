// The shapes: every sample bit for bit against a plain loop, and against the closed form in double.
#include "support/bits.h"
#include "support/random.h"
#include "window/definitions.h"

#include <orva/orva.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

using support::bitsOf;
using support::sameBits;

namespace
{

constexpr int32_t rectangular = 0, triangular = 1, halfTriangular = 2, hanning = 3, hanningPeriodic = 4,
                  hamming = 5, blackman = 6, blackmanHarris = 7, blackmanNuttall = 8, nuttal = 9,
                  flatTop = 10;
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float inf = std::numeric_limits<float>::infinity();

std::vector<float> window(int32_t type, uint32_t length)
{
    std::vector<float> samples(length + 1, 77.0f); // one more, so that the data is never null
    EXPECT_TRUE(ORVA_CreateWindow(type, samples.data(), length));
    EXPECT_EQ(samples.back(), 77.0f) << "type " << type << " wrote past its " << length << " samples";
    samples.pop_back();
    return samples;
}

} // namespace

TEST(WindowShapes, AreThePlainLoopBitForBit)
{
    std::vector<uint32_t> lengths;
    for (uint32_t length = 0; length <= 130; ++length)
        lengths.push_back(length);
    support::Random random;
    for (int i = 0; i < 10; ++i)
        lengths.push_back(static_cast<uint32_t>(random.integer(131, 9000)));
    for (const auto &definition : definitions)
        for (uint32_t length : lengths)
            ASSERT_TRUE(sameBits(window(definition.type, length), samplesOf(definition, length)))
                << definition.name << " of " << length;
}

// In a long window, the sum of many steps and the product i * step part far enough to change stored samples.
TEST(WindowShapes, ThePhaseIsAccumulated)
{
    const uint32_t length = 400000;
    for (const auto &definition : definitions) {
        if (definition.terms.empty())
            continue;
        const auto w = window(definition.type, length);
        ASSERT_TRUE(sameBits(w, samplesOf(definition, length))) << definition.name;
        const double step = 6.283185307179586 / (length - definition.divisorLess);
        bool productDiffers = false;
        for (uint32_t i = 0; i < length / 2; ++i)
            productDiffers |= w[i] != static_cast<float>(cosineSum(definition.terms, i * step));
        EXPECT_TRUE(productDiffers) << "else this test shows nothing";
    }
}

TEST(WindowShapes, FollowTheirClosedForm)
{
    for (const auto &definition : definitions)
        for (uint32_t length : {4u, 5u, 64u, 1023u, 1024u}) {
            if (definition.terms.empty())
                continue;
            const auto w = window(definition.type, length);
            for (uint32_t i = 0; i < length; ++i) {
                const uint32_t nearer = definition.mirrored ? std::min(i, length - 1 - i) : i;
                const double turns = nearer / (length - definition.divisorLess);
                double expected = 0.0;
                for (size_t k = 0; k < definition.terms.size(); ++k)
                    expected += definition.terms[k] * std::cos(2.0 * M_PI * static_cast<double>(k) * turns);
                ASSERT_NEAR(w[i], expected, 3e-7) << definition.name << " of " << length << " at " << i;
            }
        }
}

TEST(WindowShapes, EndsKeepTheirRoundingResidue)
{
    const struct {
        int32_t type;
        double end;
    } rows[] = {
        {hanning, 0.0},
        {hamming, 0.07999999821186066},
        {blackman, -1.3877787807814457e-17},
        {blackmanHarris, 5.999999848427251e-05},
        {blackmanNuttall, -2.42861286636753e-17},
        {nuttal, 0.00036279999767430127},
        {flatTop, 8.673617379884035e-17},
    };
    for (const auto &row : rows)
        for (uint32_t length : {1u, 2u, 3u, 16u, 17u}) {
            const auto w = window(row.type, length);
            EXPECT_EQ(bitsOf(w.front()), bitsOf(static_cast<float>(row.end)))
                << "type " << row.type << " of " << length;
            EXPECT_EQ(bitsOf(w.back()), bitsOf(static_cast<float>(row.end)))
                << "type " << row.type << " of " << length;
        }
}

TEST(WindowShapes, CosineSumsAreSymmetric)
{
    for (const auto &definition : definitions)
        for (uint32_t length : {64u, 65u}) {
            if (definition.terms.empty() || !definition.mirrored)
                continue;
            const auto w = window(definition.type, length);
            EXPECT_TRUE(sameBits(w, std::vector<float>(w.rbegin(), w.rend())))
                << definition.name << " of " << length;
        }
}

TEST(WindowShapes, ShortWindowsHaveTheirWorkedValues)
{
    const float third = 1.0f / 3.0f, twoThirds = static_cast<float>(2.0 / 3.0),
                fourThirds = static_cast<float>(4.0 / 3.0);
    const struct {
        int32_t type;
        std::vector<float> samples;
    } rows[] = {
        {rectangular, {1.0f}},
        {rectangular, {1.0f, 1.0f, 1.0f}},
        {triangular, {-0.0f}},
        {triangular, {notANumber, notANumber}},
        {triangular, {notANumber, inf, notANumber}},
        {triangular, {0.0f, 1.0f, 1.0f, 0.0f}},
        {triangular, {0.0f, 1.0f, 2.0f, 1.0f, 0.0f}},
        {triangular, {0.0f, third, twoThirds, 1.0f, 1.0f, twoThirds, third, 0.0f}},
        {triangular, {0.0f, third, twoThirds, 1.0f, fourThirds, 1.0f, twoThirds, third, 0.0f}},
        {halfTriangular, {notANumber}},
        {halfTriangular, {0.0f, 1.0f}},
        {halfTriangular, {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}},
        {hanning, {0.0f, 1.0f, 0.0f}},
        {hanningPeriodic, {0.0f}},
    };
    for (const auto &row : rows)
        EXPECT_TRUE(sameBits(window(row.type, static_cast<uint32_t>(row.samples.size())), row.samples))
            << "type " << row.type;
}

TEST(WindowShapes, PeriodicHanningDoesNotEndInZero)
{
    const auto periodic = window(hanningPeriodic, 4);
    const float expected[] = {0.0f, 0.5f, 1.0f, 0.5f};
    for (size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(periodic[i], expected[i], 1e-7);
    EXPECT_EQ(window(hanning, 4).back(), 0.0f);
}

TEST(WindowShapes, FlatTopPeaksAtItsSumOfTerms)
{
    EXPECT_NEAR(window(flatTop, 65)[32], 4.636, 1e-6);
}

TEST(WindowShapes, LengthZeroWritesNothing)
{
    for (const auto &definition : definitions) {
        float sample = 77.0f;
        EXPECT_TRUE(ORVA_CreateWindow(definition.type, &sample, 0));
        EXPECT_EQ(sample, 77.0f) << definition.name;
    }
}

// From 2^24 on, indices are rounded when they become floats.
TEST(WindowShapes, TrianglesTakeTheirIndicesThroughFloat)
{
    const struct {
        int32_t type;
        uint32_t length; // with half of the first odd, it is rounded too
        uint32_t end;
    } rows[] = {{triangular, (1u << 25) + 4322, (1u << 24) + 2161},
                {halfTriangular, (1u << 24) + 4322, (1u << 24) + 4322}};
    for (const auto &row : rows) {
        const auto w = std::make_unique_for_overwrite<float[]>(row.length);
        ASSERT_TRUE(ORVA_CreateWindow(row.type, w.get(), row.length));
        const double slope = static_cast<double>(static_cast<float>(row.length / 2)) - 1.0;
        const double last = static_cast<double>(row.length) - 1.0;
        bool exactIndexDiffers = false;
        for (uint32_t i = (1u << 24) - 8; i < row.end; ++i) {
            const float index = static_cast<float>(i);
            const float expected = row.type == triangular
                                       ? static_cast<float>(static_cast<double>(index) / slope)
                                       : index / static_cast<float>(last);
            ASSERT_EQ(bitsOf(w[i]), bitsOf(expected)) << i;
            exactIndexDiffers |= expected != static_cast<float>(i / (row.type == triangular ? slope : last));
        }
        EXPECT_TRUE(exactIndexDiffers) << "else this test shows nothing";
    }
}

TEST(WindowShapes, AnyAlignmentWillDo)
{
    std::vector<float> samples(41);
    for (const auto &definition : definitions) {
        ASSERT_TRUE(ORVA_CreateWindow(definition.type, samples.data() + 1, 40));
        EXPECT_TRUE(
            sameBits(std::vector<float>(samples.begin() + 1, samples.end()), samplesOf(definition, 40)));
    }
}
