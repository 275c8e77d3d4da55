// Complex vectors, the response of a pre-emphasis, complex products.
#include "support/bits.h"
#include "support/log.h"
#include "support/random.h"

#include <orva/orva.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>

using support::bitsOf;
using support::sameBits;

namespace
{

using Vector = std::vector<ORVA_COMPLEX>;

Vector anyVector(support::Random &random, size_t size)
{
    Vector vector(size);
    for (auto &value : vector)
        value = random.integer(0, 4) == 0 ? ORVA_COMPLEX{random.anyFloat(), random.anyFloat()}
                                          : ORVA_COMPLEX{static_cast<float>(random.real(-9.0, 9.0)),
                                                         static_cast<float>(random.real(-9.0, 9.0))};
    return vector;
}

std::vector<float> floatsOf(const Vector &vector)
{
    std::vector<float> floats;
    for (const auto &value : vector)
        floats.insert(floats.end(), {value.re, value.im});
    return floats;
}

// The product by its steps: the real part is stored, then the inputs are read again.
void multiply(const ORVA_COMPLEX *a, const ORVA_COMPLEX *b, ORVA_COMPLEX *out, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        out[i].re = a[i].re * b[i].re - a[i].im * b[i].im;
        out[i].im = a[i].im * b[i].re + a[i].re * b[i].im;
    }
}

} // namespace

TEST(ComplexVector, HoldsTheWholeLengthAligned)
{
    for (int32_t length : {1, 2, 3, 4, 5, 1023, 1024})
        for (ORVA_FFT *(*create)(int32_t) : {ORVA_FFTProcCreate, ORVA_IFFTProcCreate}) {
            ORVA_FFT *fft = create(length);
            ORVA_COMPLEX *vector = ORVA_CreateComplexVector(fft);
            ASSERT_NE(vector, nullptr);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(vector) % 16, 0u);
            const size_t room = std::max<size_t>(static_cast<size_t>(length), 4);
            std::memset(vector, 0xFF, room * sizeof *vector); // a sanitizer sees a shorter block
            EXPECT_TRUE(ORVA_DestroyComplexVector(vector));
            EXPECT_TRUE(ORVA_FFTProcDestroy(fft));
        }
}

TEST(ComplexVector, IsAWorkArrayAtEveryLength)
{
    for (int32_t length = 1; length <= 20; ++length) {
        ORVA_FFT *fft = ORVA_FFTProcCreate(length);
        ORVA_COMPLEX *work = ORVA_CreateComplexVector(fft);
        std::vector<float> input(static_cast<size_t>(length), 1.0f),
            power(4 * (static_cast<size_t>(length) / 8 + 1));
        EXPECT_EQ(ORVA_FFTProcExecutePSDEx(fft, input.data(), power.data(), work), length / 2 + 1);
        EXPECT_NEAR(power[0], length * length, 1e-4);
        ORVA_DestroyComplexVector(work);
        ORVA_FFTProcDestroy(fft);
    }
}

TEST(ComplexVector, OfNullOrOfNoLengthIsNull)
{
    EXPECT_EQ(ORVA_CreateComplexVector(nullptr), nullptr);
    EXPECT_FALSE(ORVA_DestroyComplexVector(nullptr));
    for (int32_t length : {0, -1, INT32_MIN}) {
        ORVA_FFT *fft = ORVA_FFTProcCreate(length);
        ASSERT_NE(fft, nullptr);
        EXPECT_EQ(ORVA_CreateComplexVector(fft), nullptr);
        ORVA_FFTProcDestroy(fft);
    }
}

TEST(PreEmphasisAdjust, IsThePlainLoopBitForBit)
{
    support::Random random;
    for (int round = 0; round < 300; ++round) {
        const auto length = static_cast<int32_t>(random.integer(2, 600));
        const double a = random.real(-1.5, 1.5);
        const int32_t M = length / 2;
        std::vector<float> output(static_cast<size_t>(M) + 2, 77.0f);
        ASSERT_TRUE(ORVA_CreatePreEmphAdjust(output.data(), length, a));
        for (int32_t i = 0; i <= M; ++i) {
            const double w = (static_cast<double>(i) / static_cast<double>(M)) * 3.141592653589793;
            const double v = (1.0 - std::cos(w) * (a + a)) + a * a;
            ASSERT_EQ(bitsOf(output[static_cast<size_t>(i)]), bitsOf(static_cast<float>(std::sqrt(v))));
        }
        EXPECT_EQ(output.back(), 77.0f);
    }
}

TEST(PreEmphasisAdjust, IsTheMagnitudeOfTheFilter)
{
    for (double a : {0.97, 0.5, -0.9, 1.0, -1.0, 1.3})
        for (int32_t length : {64, 65}) {
            std::vector<float> output(33);
            ASSERT_TRUE(ORVA_CreatePreEmphAdjust(output.data(), length, a));
            for (int i = 0; i <= 32; ++i)
                EXPECT_NEAR(output[static_cast<size_t>(i)],
                            std::abs(1.0 - a * std::polar(1.0, -std::numbers::pi * i / 32.0)), 3e-7);
        }
}

TEST(PreEmphasisAdjust, HasItsWorkedValues)
{
    std::vector<float> output(17, 77.0f);
    EXPECT_TRUE(ORVA_CreatePreEmphAdjust(output.data(), 32, 0.0));
    EXPECT_EQ(output, std::vector<float>(17, 1.0f));

    EXPECT_TRUE(ORVA_CreatePreEmphAdjust(output.data(), 4, 1.0));
    EXPECT_EQ(output[0], 0.0f);
    EXPECT_FLOAT_EQ(output[1], std::numbers::sqrt2_v<float>);
    EXPECT_EQ(output[2], 2.0f);
    EXPECT_EQ(output[3], 1.0f);
}

TEST(PreEmphasisAdjust, OfNoBinsToDivideByIsOneNotANumber)
{
    for (int32_t length : {0, 1, -1})
        for (double a : {0.0, 0.97}) {
            float output[2] = {77.0f, 77.0f};
            EXPECT_TRUE(ORVA_CreatePreEmphAdjust(output, length, a));
            EXPECT_TRUE(std::isnan(output[0])) << length;
            EXPECT_EQ(output[1], 77.0f) << length;
        }
}

TEST(PreEmphasisAdjust, WritesNothingBelowAndNothingToNull)
{
    for (int32_t length : {-2, -3, -1024, INT32_MIN}) {
        float output = 77.0f;
        EXPECT_TRUE(ORVA_CreatePreEmphAdjust(&output, length, 0.97));
        EXPECT_EQ(output, 77.0f) << length;
    }
    for (int32_t length : {1024, 1, 0, -5})
        EXPECT_TRUE(ORVA_CreatePreEmphAdjust(nullptr, length, 0.97));
}

TEST(ComplexProduct, IsThePlainLoopBitForBit)
{
    support::Random random;
    for (size_t count : {1u, 2u, 3u, 4u, 5u, 8u, 17u, 513u}) {
        const auto a = anyVector(random, count), b = anyVector(random, count);
        Vector output(count + 1, {77.0f, -77.0f}), expected(output);
        multiply(a.data(), b.data(), expected.data(), count);
        EXPECT_TRUE(
            ORVA_ComplexVectorMultiply(a.data(), b.data(), output.data(), static_cast<int32_t>(count)));
        EXPECT_TRUE(sameBits(floatsOf(output), floatsOf(expected)));
    }
}

TEST(ComplexProduct, HasItsWorkedValue)
{
    const ORVA_COMPLEX a = {1.0f, 2.0f}, b = {3.0f, 4.0f};
    ORVA_COMPLEX output;
    EXPECT_TRUE(ORVA_ComplexVectorMultiply(&a, &b, &output, 1));
    EXPECT_EQ(output.re, -5.0f);
    EXPECT_EQ(output.im, 10.0f);
}

TEST(ComplexProduct, OntoAnInputTakesItsNewRealPart)
{
    Vector a = {{1.0f, 2.0f}}, b = {{3.0f, 4.0f}};
    EXPECT_TRUE(ORVA_ComplexVectorMultiply(a.data(), b.data(), a.data(), 1));
    EXPECT_EQ(a[0].re, -5.0f);
    EXPECT_EQ(a[0].im, 2.0f * 3.0f + -5.0f * 4.0f);
}

// Any overlap gives what the steps give in index order.
TEST(ComplexProduct, OverlapsFollowTheStepsInOrder)
{
    support::Random random;
    constexpr size_t count = 41;
    for (size_t aAt : {0u, 1u, 2u, 4u, 7u})
        for (size_t bAt : {0u, 1u, 4u, 50u})
            for (size_t outAt : {0u, 1u, 3u, 4u, 100u}) {
                auto actual = anyVector(random, 150), expected = actual;
                multiply(expected.data() + aAt, expected.data() + bAt, expected.data() + outAt, count);
                ASSERT_TRUE(ORVA_ComplexVectorMultiply(actual.data() + aAt, actual.data() + bAt,
                                                       actual.data() + outAt, static_cast<int32_t>(count)));
                EXPECT_TRUE(sameBits(floatsOf(actual), floatsOf(expected)))
                    << aAt << ' ' << bAt << ' ' << outAt;
            }
}

TEST(ComplexProduct, RefusalsWriteNothing)
{
    const ORVA_COMPLEX a = {1.0f, 2.0f};
    ORVA_COMPLEX output = {77.0f, -77.0f};
    EXPECT_FALSE(ORVA_ComplexVectorMultiply(&a, &a, &output, -1));
    EXPECT_FALSE(ORVA_ComplexVectorMultiply(&a, &a, &output, INT32_MIN));
    for (int32_t count : {0, 1}) {
        EXPECT_FALSE(ORVA_ComplexVectorMultiply(nullptr, &a, &output, count));
        EXPECT_FALSE(ORVA_ComplexVectorMultiply(&a, nullptr, &output, count));
        EXPECT_FALSE(ORVA_ComplexVectorMultiply(&a, &a, nullptr, count));
    }
    EXPECT_TRUE(ORVA_ComplexVectorMultiply(&a, &a, &output, 0));
    EXPECT_EQ(output.re, 77.0f);
    EXPECT_EQ(output.im, -77.0f);
}

TEST(SpectrumUtilities, LogNothing)
{
    const support::Log log;
    float output = 0.0f;
    ORVA_CreateComplexVector(nullptr);
    ORVA_DestroyComplexVector(nullptr);
    ORVA_CreatePreEmphAdjust(nullptr, 4, 0.5);
    ORVA_PSDtoDB(0, nullptr, &output, nullptr, 1.0, 120.0);
    ORVA_ComplexVectorMultiply(nullptr, nullptr, nullptr, -1);
    EXPECT_TRUE(log.messages.empty());
}
