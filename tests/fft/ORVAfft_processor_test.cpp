// The processors as a host uses them.
#include "support/bits.h"
#include "support/log.h"
#include "support/random.h"

#include <orva/orva.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <thread>

using support::bitsOf;
using support::sameBits;

namespace
{

struct Destroy {
    void operator()(ORVA_FFT *fft) const
    {
        EXPECT_TRUE(ORVA_FFTProcDestroy(fft));
    }
};
using Processor = std::unique_ptr<ORVA_FFT, Destroy>;
using Spectrum = std::vector<ORVA_COMPLEX>; // aligned to 16 bytes like every block of the heap

Processor forward(int32_t length)
{
    return Processor(ORVA_FFTProcCreate(length));
}

Processor inverse(int32_t length)
{
    return Processor(ORVA_IFFTProcCreate(length));
}

size_t binsOf(int32_t length)
{
    return static_cast<size_t>(length) / 2 + 1;
}

size_t powersOf(int32_t length)
{
    return 4 * (static_cast<size_t>(length) / 8 + 1);
}

// Room for a spectrum or for a work array, every value a mark.
constexpr ORVA_COMPLEX mark = {77.0f, -77.0f};
Spectrum marked(int32_t length)
{
    return Spectrum(std::max<size_t>(static_cast<size_t>(length), 4), mark);
}

bool isMark(const ORVA_COMPLEX &value)
{
    return value.re == mark.re && value.im == mark.im;
}

std::vector<float> floatsOf(const Spectrum &spectrum, size_t count)
{
    std::vector<float> floats;
    for (size_t k = 0; k < count; ++k)
        floats.insert(floats.end(), {spectrum[k].re, spectrum[k].im});
    return floats;
}

std::complex<double> definition(const std::vector<float> &x, size_t k)
{
    const size_t N = x.size();
    std::complex<double> sum;
    for (size_t n = 0; n < N; ++n)
        sum += static_cast<double>(x[n]) *
               std::polar(1.0,
                          -2.0 * std::numbers::pi * static_cast<double>(k * n % N) / static_cast<double>(N));
    return sum;
}

const int32_t lengths[] = {1,  2,  3,  4,  5,  6,   7,   8,   9,   12,  15,   16,  17,
                           25, 31, 32, 60, 64, 100, 101, 127, 128, 360, 1023, 1024};

} // namespace

TEST(FFTProcessor, ForwardIsTheUnscaledTransformOfTheDefinition)
{
    support::Random random;
    for (int32_t length : lengths) {
        SCOPED_TRACE(length);
        const auto fft = forward(length);
        const auto input = random.noise(static_cast<size_t>(length));
        auto copy = input;
        auto output = marked(length);
        ASSERT_EQ(ORVA_FFTProcExecute(fft.get(), copy.data(), output.data()),
                  static_cast<int32_t>(binsOf(length)));
        EXPECT_TRUE(sameBits(copy, input)) << "the input stays";
        for (size_t k = 0; k < output.size(); ++k) {
            if (k >= binsOf(length)) {
                EXPECT_TRUE(isMark(output[k])) << "wrote after the bins, at " << k;
                continue;
            }
            const auto expected = definition(input, k);
            EXPECT_NEAR(output[k].re, expected.real(), 2e-6 * length) << k;
            EXPECT_NEAR(output[k].im, expected.imag(), 2e-6 * length) << k;
        }
    }
}

TEST(FFTProcessor, CountsBinsAndSamples)
{
    const struct {
        int32_t length;
        int32_t bins;
    } rows[] = {{1024, 513}, {1023, 512}, {1, 1}, {2, 2}, {3, 2}, {4, 3}, {7, 4}, {8, 5}};
    for (const auto &row : rows) {
        std::vector<float> samples(static_cast<size_t>(row.length)), power(powersOf(row.length));
        auto spectrum = marked(row.length);
        EXPECT_EQ(ORVA_FFTProcExecute(forward(row.length).get(), samples.data(), spectrum.data()), row.bins);
        EXPECT_EQ(ORVA_FFTProcExecutePSDEx(forward(row.length).get(), samples.data(), power.data(),
                                           spectrum.data()),
                  row.bins);
        EXPECT_EQ(ORVA_IFFTProcExecuteEx(inverse(row.length).get(), spectrum.data(), samples.data(), true),
                  row.length);
        EXPECT_EQ(ORVA_IFFTProcExecuteEx(inverse(row.length).get(), spectrum.data(), samples.data(), false),
                  row.length);
    }
}

TEST(FFTProcessor, ThereAndBackGivesTheSamplesOrNTimesThem)
{
    support::Random random;
    for (int32_t length : lengths) {
        SCOPED_TRACE(length);
        const auto there = forward(length), back = inverse(length);
        const auto input = random.noise(static_cast<size_t>(length));
        for (bool normalise : {true, false}) {
            auto spectrum = marked(length);
            std::vector<float> output(input.size() + 1, 77.0f);
            ORVA_FFTProcExecute(there.get(), input.data(), spectrum.data());
            ORVA_IFFTProcExecuteEx(back.get(), spectrum.data(), output.data(), normalise);
            const double factor = normalise ? 1.0 : length;
            for (size_t n = 0; n < input.size(); ++n)
                ASSERT_NEAR(output[n], factor * static_cast<double>(input[n]), 2e-6 * factor) << n;
            EXPECT_EQ(output.back(), 77.0f);
        }
    }
}

TEST(FFTProcessor, NormalisingMultipliesByOneOverNInFloat)
{
    support::Random random;
    for (int32_t length : lengths) {
        const auto there = forward(length), back = inverse(length);
        const auto input = random.noise(static_cast<size_t>(length));
        auto first = marked(length), second = marked(length);
        std::vector<float> plain(input.size()), normalised(input.size());
        ORVA_FFTProcExecute(there.get(), input.data(), first.data());
        ORVA_FFTProcExecute(there.get(), input.data(), second.data());
        ORVA_IFFTProcExecuteEx(back.get(), first.data(), plain.data(), false);
        ORVA_IFFTProcExecuteEx(back.get(), second.data(), normalised.data(), true);
        const float factor = 1.0f / static_cast<float>(length);
        for (size_t n = 0; n < input.size(); ++n)
            ASSERT_EQ(bitsOf(normalised[n]), bitsOf(plain[n] * factor)) << length << ", " << n;
    }
}

TEST(FFTProcessor, AnImpulseHasPowerOneInEveryBin)
{
    for (int32_t length : lengths) {
        std::vector<float> impulse(static_cast<size_t>(length)), power(powersOf(length));
        impulse[0] = 1.0f;
        const int32_t bins =
            ORVA_FFTProcExecutePSDEx(forward(length).get(), impulse.data(), power.data(), nullptr);
        for (int32_t k = 0; k < bins; ++k)
            EXPECT_NEAR(power[static_cast<size_t>(k)], 1.0f, 1e-6) << "N " << length << ", bin " << k;
    }
}

TEST(FFTProcessorPower, IsTheSquareOfTheWorkArrayInWholeGroupsOfFour)
{
    support::Random random;
    for (int32_t length : lengths) {
        SCOPED_TRACE(length);
        const auto fft = forward(length);
        const auto input = random.noise(static_cast<size_t>(length));
        auto work = marked(length), spectrum = marked(length);
        std::vector<float> power(powersOf(length) + 1, 55.0f);
        ORVA_FFTProcExecute(fft.get(), input.data(), spectrum.data());
        ASSERT_EQ(ORVA_FFTProcExecutePSDEx(fft.get(), input.data(), power.data(), work.data()),
                  static_cast<int32_t>(binsOf(length)));
        EXPECT_TRUE(sameBits(floatsOf(work, work.size()), floatsOf(spectrum, spectrum.size())))
            << "the work array holds the spectrum and nothing is written after it";
        for (size_t k = 0; k < powersOf(length); ++k)
            ASSERT_EQ(bitsOf(power[k]), bitsOf(work[k].re * work[k].re + work[k].im * work[k].im)) << k;
        EXPECT_EQ(power.back(), 55.0f);
    }
}

TEST(FFTProcessorPower, WithoutAWorkArrayIsTheSame)
{
    support::Random random;
    for (int32_t length : lengths) {
        SCOPED_TRACE(length);
        const auto fft = forward(length);
        const auto input = random.noise(static_cast<size_t>(length));
        auto work = marked(length);
        std::vector<float> with(powersOf(length) + 1, 55.0f), without(with);
        ORVA_FFTProcExecutePSDEx(fft.get(), input.data(), with.data(), work.data());
        ASSERT_EQ(ORVA_FFTProcExecutePSDEx(fft.get(), input.data(), without.data(), nullptr),
                  static_cast<int32_t>(binsOf(length)));
        for (size_t k = 0; k < powersOf(length); ++k)
            EXPECT_EQ(bitsOf(without[k]), bitsOf(k < binsOf(length) ? with[k] : 0.0f)) << k;
        EXPECT_EQ(without.back(), 55.0f);
    }
}

TEST(FFTProcessor, EqualInputAndOutputAreReportedAndTransformedAllTheSame)
{
    const auto there = forward(16), back = inverse(16);
    Spectrum data(16, {1.0f, 0.5f});
    const auto before = floatsOf(data, data.size());
    const support::Log log;
    EXPECT_EQ(ORVA_FFTProcExecute(there.get(), &data[0].re, data.data()), 9);
    const auto between = floatsOf(data, data.size());
    EXPECT_FALSE(sameBits(between, before)) << "the transform ran";
    EXPECT_EQ(ORVA_IFFTProcExecuteEx(back.get(), data.data(), &data[0].re, false), 16);
    EXPECT_FALSE(sameBits(floatsOf(data, data.size()), between)) << "the transform ran";
    EXPECT_EQ(
        log.messages,
        (std::vector<support::Message>{
            support::terminalError("ORVA_FFTProcExecute: Input and output vectors must be different!"),
            support::terminalError("ORVA_IFFTProcExecute: Input and output vectors must be different!")}));
}

TEST(FFTProcessor, DifferentPointersAreNotReported)
{
    const auto there = forward(16), back = inverse(16);
    std::vector<float> samples(16), power(12);
    auto spectrum = marked(16);
    const support::Log log;
    ORVA_FFTProcExecute(there.get(), samples.data(), spectrum.data());
    ORVA_IFFTProcExecuteEx(back.get(), spectrum.data(), samples.data(), true);
    ORVA_FFTProcExecutePSDEx(there.get(), samples.data(), power.data(), spectrum.data());
    ORVA_FFTProcExecutePSDEx(there.get(), samples.data(), power.data(), nullptr);
    ORVA_FFTProcDestroy(nullptr);
    EXPECT_TRUE(log.messages.empty());
}

TEST(FFTProcessor, ALengthThatFFTWRefusesExecutesNothing)
{
    for (int32_t length : {0, -1, -1024, INT32_MIN}) {
        const auto there = forward(length), back = inverse(length);
        ASSERT_NE(there, nullptr);
        ASSERT_NE(back, nullptr);
        std::vector<float> samples(8, 77.0f), power(8, 77.0f);
        auto spectrum = marked(8);
        const support::Log log;
        EXPECT_EQ(ORVA_FFTProcExecute(there.get(), samples.data(), spectrum.data()), 0);
        EXPECT_EQ(ORVA_IFFTProcExecuteEx(back.get(), spectrum.data(), samples.data(), true), 0);
        EXPECT_EQ(ORVA_FFTProcExecutePSDEx(there.get(), samples.data(), power.data(), spectrum.data()), 0);
        EXPECT_EQ(ORVA_FFTProcExecutePSDEx(there.get(), samples.data(), power.data(), nullptr), 0);
        EXPECT_EQ(samples, std::vector<float>(8, 77.0f));
        EXPECT_EQ(power, std::vector<float>(8, 77.0f));
        EXPECT_TRUE(std::all_of(spectrum.begin(), spectrum.end(), isMark));
        EXPECT_TRUE(log.messages.empty());
    }
}

TEST(FFTProcessor, NullArgumentsExecuteNothing)
{
    const auto there = forward(8), back = inverse(8);
    std::vector<float> samples(8, 77.0f), power(8, 77.0f);
    auto spectrum = marked(8);
    EXPECT_EQ(ORVA_FFTProcExecute(nullptr, samples.data(), spectrum.data()), 0);
    EXPECT_EQ(ORVA_FFTProcExecute(there.get(), nullptr, spectrum.data()), 0);
    EXPECT_EQ(ORVA_FFTProcExecute(there.get(), samples.data(), nullptr), 0);
    EXPECT_EQ(ORVA_IFFTProcExecuteEx(nullptr, spectrum.data(), samples.data(), true), 0);
    EXPECT_EQ(ORVA_IFFTProcExecuteEx(back.get(), nullptr, samples.data(), true), 0);
    EXPECT_EQ(ORVA_IFFTProcExecuteEx(back.get(), spectrum.data(), nullptr, true), 0);
    EXPECT_EQ(ORVA_FFTProcExecutePSDEx(nullptr, samples.data(), power.data(), spectrum.data()), 0);
    EXPECT_EQ(ORVA_FFTProcExecutePSDEx(there.get(), nullptr, power.data(), spectrum.data()), 0);
    EXPECT_EQ(ORVA_FFTProcExecutePSDEx(there.get(), samples.data(), nullptr, spectrum.data()), 0);
    EXPECT_EQ(samples, std::vector<float>(8, 77.0f));
    EXPECT_EQ(power, std::vector<float>(8, 77.0f));
    EXPECT_TRUE(std::all_of(spectrum.begin(), spectrum.end(), isMark));
}

// Two nulls are the same pointer, and a handle without a plan does not keep the report back.
TEST(FFTProcessor, ReportsEqualPointersAlsoWhereItExecutesNothing)
{
    const auto refused = forward(0);
    float sample = 77.0f;
    const support::Log log;
    EXPECT_EQ(ORVA_FFTProcExecute(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(ORVA_FFTProcExecute(refused.get(), &sample, reinterpret_cast<ORVA_COMPLEX *>(&sample)), 0);
    EXPECT_EQ(ORVA_IFFTProcExecuteEx(nullptr, nullptr, nullptr, true), 0);
    EXPECT_EQ(ORVA_FFTProcExecutePSDEx(nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(sample, 77.0f);
    const auto forwardReport =
        support::terminalError("ORVA_FFTProcExecute: Input and output vectors must be different!");
    EXPECT_EQ(
        log.messages,
        (std::vector<support::Message>{
            forwardReport, forwardReport,
            support::terminalError("ORVA_IFFTProcExecute: Input and output vectors must be different!")}));
}

TEST(FFTProcessor, DestroyTellsNullFromAProcessor)
{
    EXPECT_FALSE(ORVA_FFTProcDestroy(nullptr));
    EXPECT_TRUE(ORVA_FFTProcDestroy(ORVA_FFTProcCreate(64)));
    EXPECT_TRUE(ORVA_FFTProcDestroy(ORVA_IFFTProcCreate(64)));
}

TEST(FFTProcessor, OneServesSeveralThreadsWhileOthersComeAndGo)
{
    constexpr int32_t length = 256;
    const auto there = forward(length), back = inverse(length);
    const auto input = support::Random().noise(length);
    auto expectedSpectrum = marked(length);
    std::vector<float> expectedPower(powersOf(length)), expectedOutput(length);
    ORVA_FFTProcExecutePSDEx(there.get(), input.data(), expectedPower.data(), expectedSpectrum.data());
    ORVA_IFFTProcExecuteEx(back.get(), expectedSpectrum.data(), expectedOutput.data(), true);

    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int round = 0; round < 20; ++round) {
                auto spectrum = marked(length);
                std::vector<float> power(powersOf(length)), output(length);
                ORVA_FFTProcExecutePSDEx(there.get(), input.data(), power.data(), spectrum.data());
                ORVA_IFFTProcExecuteEx(back.get(), spectrum.data(), output.data(), true);
                EXPECT_TRUE(sameBits(power, expectedPower));
                EXPECT_TRUE(sameBits(output, expectedOutput));
                forward(64 + t);
            }
        });
    for (auto &thread : threads)
        thread.join();
}
