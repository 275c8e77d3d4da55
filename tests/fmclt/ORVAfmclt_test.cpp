#include "ORVAfmclt_reference.h"

#include "support/bits.h"
#include "support/random.h"
#include "support/recording.h"

#include <orva/ORVAcore.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

using namespace fmclt;
using std::numbers::pi;
using support::Random;
using support::sameBits;

namespace
{

const int32_t blockLengths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 20, 31, 64, 100, 255, 256};

// The coefficients by their closed form in double; `sign` and `wave` tell the two parts apart.
double closedForm(const Samples &u, size_t k, double sign, double (*wave)(double))
{
    const double M = static_cast<double>(u.size()) / 2;
    double sum = 0;
    for (size_t n = 0; n < u.size(); ++n) {
        const double at = static_cast<double>(n);
        sum += double{u[n]} * std::sin((at + 0.5) * pi / (2 * M)) *
               wave((at + (M + 1) / 2) * (static_cast<double>(k) + 0.5) * pi / M);
    }
    return sign * std::sqrt(2 / M) * sum;
}

double sine(double x)
{
    return std::sin(x);
}

double cosine(double x)
{
    return std::cos(x);
}

// The inverse as its steps say, over a transform of its own.
Samples inverseBySteps(int32_t length, const Samples &real, const Samples &imag, Samples &overlap,
                       const Samples &window)
{
    const auto M = static_cast<size_t>(length);
    const Aligned room(fftwf_alloc_real(2 * M + 2));
    float *y = room.get();
    auto *bins = reinterpret_cast<fftwf_complex *>(y);
    const fftwf_plan plan = fftwf_plan_dft_c2r_1d(2 * length, bins, y, FFTW_ESTIMATE);
    const auto outer = [](float sum, double factor) { return static_cast<float>(double{sum} * factor); };
    Samples re(M + 1), im(M + 1, 0.0f);
    re[0] = outer(real[0] + imag[0], 0.3535533905932738);
    re[M] = outer(real[M - 1] + imag[M - 1], -0.3535533905932738);
    for (size_t k = 1; k < M; ++k) {
        const float wr = window[2 * k], wi = window[2 * k + 1];
        const float a = real[k - 1] + imag[k];
        const float b = imag[k - 1] - real[k];
        const float p1 = wr * a, p2 = wi * b, p3 = b * wr, p4 = a * wi;
        const float sum = p1 + p2, difference = p3 - p4;
        re[k] = sum * 0.25f;
        im[k] = difference * 0.25f;
    }
    const double d = static_cast<double>(length) + static_cast<double>(length);
    const auto g = static_cast<float>(std::sqrt(d));
    for (size_t k = 0; k <= M; ++k) {
        y[2 * k] = re[k] * g;
        y[2 * k + 1] = im[k] * g;
    }
    fftwf_execute(plan);
    fftwf_destroy_plan(plan);
    Samples output(M);
    for (size_t i = 0; i < M; ++i) {
        output[i] = static_cast<float>(double{y[i]} / d + double{overlap[i]});
        overlap[i] = static_cast<float>(double{y[M + i]} / d);
    }
    return output;
}

// Direct as its steps say, over a transform of its own.
void directBySteps(int32_t length, const Samples &u, const Samples &window, Samples &real, Samples &imag)
{
    const auto M = static_cast<size_t>(length);
    const Aligned room(fftwf_alloc_real(2 * M + 2));
    float *v = room.get();
    const fftwf_plan plan =
        fftwf_plan_dft_r2c_1d(2 * length, v, reinterpret_cast<fftwf_complex *>(v), FFTW_ESTIMATE);
    std::copy(u.begin(), u.end(), v);
    fftwf_execute(plan);
    fftwf_destroy_plan(plan);
    const auto s = static_cast<float>(std::sqrt(1.0 / static_cast<double>(2 * length)));
    Samples re(M + 1), im(M + 1);
    for (size_t k = 0; k <= M; ++k) {
        const float a = v[2 * k] * s, b = v[2 * k + 1] * s;
        const float p1 = a * window[2 * k], p2 = b * window[2 * k + 1];
        const float p3 = a * window[2 * k + 1], p4 = b * window[2 * k];
        re[k] = p1 - p2;
        im[k] = p3 + p4;
    }
    for (size_t k = 0; k < M; ++k) {
        real[k] = re[k + 1] - im[k];
        imag[k] = re[k] + im[k + 1];
    }
}

// Direct of the second of two blocks of noise, the first of which is the past.
void directOfBoth(Stream &stream, const Samples &u)
{
    const auto M = std::ssize(u) / 2;
    stream.history.assign(u.begin(), u.begin() + M);
    stream.direct(processor(static_cast<int32_t>(M)), u.data() + M);
}

// Sends samples through direct and inverse in blocks of M, a block of zeros after them; gives what comes out, less the
// block of the silence before the stream.
Samples thereAndBack(int32_t M, Samples samples)
{
    const auto fmclt = processor(M);
    Stream stream(M);
    samples.resize((samples.size() / static_cast<size_t>(M) + 1) * static_cast<size_t>(M), 0.0f);
    Samples result;
    for (size_t at = 0; at < samples.size(); at += static_cast<size_t>(M)) {
        stream.direct(fmclt, samples.data() + at);
        const auto block = stream.inverse(fmclt);
        result.insert(result.end(), block.begin(), block.end());
    }
    result.erase(result.begin(), result.begin() + M);
    return result;
}

} // namespace

TEST(FmcltWindow, EntriesAreTheStatedTwiddles)
{
    const auto first = twiddles(8);
    EXPECT_FLOAT_EQ(first[0], static_cast<float>(std::sqrt(0.5)));
    EXPECT_FLOAT_EQ(first[1], static_cast<float>(-std::sqrt(0.5)));
    for (const int32_t M : {1, 2, 8, 255, 1000, 16777217}) {
        const auto window = twiddles(M);
        ASSERT_EQ(window.size(), 2 * static_cast<size_t>(M) + 2);
        const double md = static_cast<double>(static_cast<float>(M));
        const int32_t step = std::max(1, M / 997);
        for (int32_t k = 0; k <= M; k += step) {
            const double kd = static_cast<double>(static_cast<float>(k));
            const double eighths = (kd + kd + 1.0) * 0.125;
            const double quarters = kd / (md * 4.0);
            const double theta = (eighths + quarters) * 6.283185307179586;
            ASSERT_EQ(window[2 * static_cast<size_t>(k)], static_cast<float>(std::cos(theta)))
                << k << " of " << M;
            ASSERT_EQ(window[2 * static_cast<size_t>(k) + 1], -static_cast<float>(std::sin(theta)))
                << k << " of " << M;
        }
    }
}

TEST(FmcltWindow, OfLengthZeroIsOneEntryOfNotANumberAndOfANegativeOneNothing)
{
    float window[4] = {7, 7, 7, 7};
    ORVA_FMCLTFreqWindow(window, -1);
    EXPECT_EQ(window[0], 7);
    ORVA_FMCLTFreqWindow(window, std::numeric_limits<int32_t>::min());
    EXPECT_EQ(window[0], 7);
    ORVA_FMCLTFreqWindow(window, 0);
    EXPECT_TRUE(std::isnan(window[0]) && std::isnan(window[1]));
    EXPECT_EQ(window[2], 7);
}

TEST(FmcltDirect, EqualsItsClosedFormsForEveryBlockLength)
{
    Random random;
    for (const int32_t M : blockLengths) {
        Stream stream(M);
        const auto u = random.noise(2 * static_cast<size_t>(M));
        directOfBoth(stream, u);
        for (size_t k = 0; k < static_cast<size_t>(M); ++k) {
            ASSERT_NEAR(stream.real[k], closedForm(u, k, -1, cosine), 2e-6) << k << " of " << M;
            ASSERT_NEAR(stream.imag[k], closedForm(u, k, 1, sine), 2e-6) << k << " of " << M;
        }
        EXPECT_TRUE(std::equal(stream.history.begin(), stream.history.end(), u.begin() + M));
    }
}

TEST(FmcltDirect, EqualsItsStepsBitForBit)
{
    Random random;
    for (const int32_t M : blockLengths) {
        Stream stream(M);
        const auto u = random.noise(2 * static_cast<size_t>(M));
        directOfBoth(stream, u);
        Samples real(stream.real), imag(real);
        directBySteps(M, u, stream.window, real, imag);
        ASSERT_TRUE(sameBits(stream.real, real)) << M;
        ASSERT_TRUE(sameBits(stream.imag, imag)) << M;
    }
}

TEST(FmcltInverse, EqualsItsStepsBitForBitForEveryBlockLength)
{
    Random random;
    for (const int32_t M : blockLengths) {
        const auto fmclt = processor(M);
        Stream stream(M);
        Samples overlap = stream.overlap;
        for (int block = 0; block < 3; ++block) {
            stream.real = random.noise(static_cast<size_t>(M));
            stream.imag = random.noise(static_cast<size_t>(M));
            const auto expected = inverseBySteps(M, stream.real, stream.imag, overlap, stream.window);
            ASSERT_TRUE(sameBits(stream.inverse(fmclt), expected)) << M;
            ASSERT_TRUE(sameBits(stream.overlap, overlap)) << M;
        }
    }
}

TEST(FmcltRoundTrip, GivesSpeechBackOneBlockLateWhereFourDividesTheBlock)
{
    auto speech = support::recording();
    speech.resize(40960);
    const float peak = std::abs(*std::max_element(
        speech.begin(), speech.end(), [](float a, float b) { return std::abs(a) < std::abs(b); }));
    for (const int32_t M : {4, 8, 12, 20, 64, 256, 1000, 1024, 4096}) {
        const auto result = thereAndBack(M, speech);
        ASSERT_GE(result.size() + static_cast<size_t>(M), speech.size());
        float error = 0;
        for (size_t n = 0; n < std::min(result.size(), speech.size()); ++n)
            error = std::max(error, std::abs(result[n] - speech[n]));
        std::printf("M = %d: largest error %.2g of the peak\n", M, double{error / peak});
        EXPECT_LT(error, 5e-7f * peak) << M;
    }
}

TEST(FmcltRoundTrip, StartsWithTheSilenceBeforeTheStream)
{
    Random random;
    const auto fmclt = processor(64);
    Stream stream(64);
    stream.direct(fmclt, random.noise(64).data());
    for (const float v : stream.inverse(fmclt))
        EXPECT_NEAR(v, 0, 1e-6);
}

TEST(FmcltRoundTrip, IsNotExactForOtherBlocks)
{
    Random random;
    for (const int32_t M : {2, 6, 7, 30}) {
        const auto samples = random.noise(20 * static_cast<size_t>(M));
        const auto result = thereAndBack(M, samples);
        float error = 0;
        for (size_t n = 0; n < samples.size(); ++n)
            error = std::max(error, std::abs(result[n] - samples[n]));
        EXPECT_GT(error, 0.01f) << M;
    }
}

TEST(Fmclt, OneProcessorServesSeveralChannelsInTurn)
{
    Random random;
    const auto shared = processor(32);
    std::vector<Stream> channels(3, Stream(32)), alone(3, Stream(32));
    for (int block = 0; block < 5; ++block)
        for (size_t c = 0; c < channels.size(); ++c) {
            const auto input = random.noise(32);
            channels[c].direct(shared, input.data());
            const auto output = channels[c].inverse(shared);
            const auto own = processor(32);
            alone[c].direct(own, input.data());
            EXPECT_TRUE(sameBits(channels[c].real, alone[c].real));
            EXPECT_TRUE(sameBits(output, alone[c].inverse(own)));
        }
}

TEST(FmcltSineTransform, IsTheOrthonormalTypeFourSineTransform)
{
    Random random;
    for (const int32_t M : blockLengths) {
        const auto size = static_cast<size_t>(M);
        const auto fmclt = processor(M);
        const auto input = random.noise(size);
        const Aligned data(fftwf_alloc_real(size)), check(fftwf_alloc_real(size));
        std::copy(input.begin(), input.end(), data.get());
        ORVA_FMCLTCDTiv(fmclt.get(), data.get());
        for (size_t k = 0; k < size; ++k) {
            double sum = 0;
            for (size_t n = 0; n < size; ++n)
                sum += double{input[n]} *
                       std::sin(pi * (static_cast<double>(n) + 0.5) * (static_cast<double>(k) + 0.5) / M);
            ASSERT_NEAR(data.get()[k], std::sqrt(2.0 / M) * sum, 2e-6) << k << " of " << M;
        }
        ORVA_FMCLTCDTiv(fmclt.get(), data.get());
        for (size_t n = 0; n < size; ++n)
            ASSERT_NEAR(data.get()[n], input[n], 1e-6) << n << " of " << M;
    }
}

TEST(FmcltSineTransform, DividesTheBareTransformInSinglePrecision)
{
    Random random;
    for (const int32_t M : blockLengths) {
        const auto size = static_cast<size_t>(M);
        const auto fmclt = processor(M);
        const auto input = random.noise(size);
        const Aligned data(fftwf_alloc_real(size)), bare(fftwf_alloc_real(size));
        const fftwf_plan plan = fftwf_plan_r2r_1d(M, bare.get(), bare.get(), FFTW_RODFT11, FFTW_ESTIMATE);
        std::copy(input.begin(), input.end(), data.get());
        std::copy(input.begin(), input.end(), bare.get());
        fftwf_execute(plan);
        fftwf_destroy_plan(plan);
        ORVA_FMCLTCDTiv(fmclt.get(), data.get());
        const auto s = static_cast<float>(std::sqrt(2.0 * M));
        for (size_t k = 0; k < size; ++k)
            ASSERT_TRUE(sameBits(data.get()[k], bare.get()[k] / s)) << k << " of " << M;
    }
}

TEST(Fmclt, BlockLengthsOutOfRangeAreRefused)
{
    for (const int32_t M :
         {0, -1, std::numeric_limits<int32_t>::min(), (1 << 28) + 1, std::numeric_limits<int32_t>::max()})
        EXPECT_EQ(ORVA_FMCLTProcCreate(M), nullptr) << M;
}

TEST(Fmclt, ANullProcessorDoesNothing)
{
    float a[4] = {1, 2, 3, 4}, b[4] = {5, 6, 7, 8};
    ORVA_FMCLTDirect(nullptr, a, a, b, b, b);
    ORVA_FMCLTInverse(nullptr, b, b, a, a, b);
    ORVA_FMCLTCDTiv(nullptr, a);
    EXPECT_EQ((Samples{a, a + 4}), (Samples{1, 2, 3, 4}));
    EXPECT_EQ((Samples{b, b + 4}), (Samples{5, 6, 7, 8}));
    EXPECT_EQ(ORVA_FMCLTProcDestroy(nullptr), 0);
}

TEST(Fmclt, DestroyTellsThatItDestroyed)
{
    EXPECT_EQ(ORVA_FMCLTProcDestroy(ORVA_FMCLTProcCreate(16)), 1);
}

// k and M are rounded to float: 2^24 + 1 counts as 2^24.
TEST(FmcltWindow, RoundsCountsToFloat)
{
    constexpr int32_t blockLength = (1 << 24) + 1;
    std::vector<float> window(2 * (static_cast<size_t>(blockLength) + 1));
    ORVA_FMCLTFreqWindow(window.data(), blockLength);
    const double rounded = 0x1p24;
    const double theta =
        ((rounded + rounded + 1.0) * 0.125 + rounded / (rounded * 4.0)) * (2.0 * std::numbers::pi);
    for (const size_t k : {size_t{1} << 24, (size_t{1} << 24) + 1}) {
        EXPECT_EQ(window[2 * k], static_cast<float>(std::cos(theta))) << k;
        EXPECT_EQ(window[2 * k + 1], -static_cast<float>(std::sin(theta))) << k;
    }
}
