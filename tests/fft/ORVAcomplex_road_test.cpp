// The road of one spectrum frame, from a window to decibels, as a host takes it.
#include <orva/orva.h>

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace
{

constexpr int32_t length = 1024;
constexpr size_t samples = 1024, powers = 516;

// The decibels of a sine of height 1 in the middle of a bin, through a window and, where given, an
// adjustment.
std::vector<float> spectrumOfSine(int32_t windowType, size_t bin, const float *adjustment)
{
    std::vector<float> window(samples), frame(samples), power(powers), decibels(powers);
    for (size_t n = 0; n < samples; ++n)
        frame[n] = static_cast<float>(
            std::sin(2.0 * std::numbers::pi * static_cast<double>(bin * n % samples) / length + 0.3));
    EXPECT_TRUE(ORVA_CreateWindow(windowType, window.data(), length));
    const double gain = ORVA_GetWindowNormFactor(window.data(), length);

    ORVA_FFT *fft = ORVA_FFTProcCreate(length);
    ORVA_COMPLEX *work = ORVA_CreateComplexVector(fft);
    EXPECT_TRUE(ORVA_ApplyWindow(window.data(), frame.data(), length));
    EXPECT_EQ(ORVA_FFTProcExecutePSDEx(fft, frame.data(), power.data(), work), 513);
    EXPECT_TRUE(
        ORVA_PSDtoDB(length, power.data(), decibels.data(), adjustment, gain * gain * gain * gain, 120.0));
    EXPECT_TRUE(ORVA_DestroyComplexVector(work));
    EXPECT_TRUE(ORVA_FFTProcDestroy(fft));
    decibels.resize(513);
    return decibels;
}

} // namespace

TEST(SpectrumRoad, AFullScaleSineReadsZeroDecibelsThroughAnyWindow)
{
    for (const char *name : {"Rectangular", "Hanning", "Hanning-Periodic", "Hamming", "Blackman",
                             "Blackman-Harris", "Blackman-Nuttall", "Nuttal", "Flat-Top"})
        for (size_t bin : {20u, 100u, 255u, 400u}) {
            const auto decibels = spectrumOfSine(ORVA_GetWindowType(name), bin, nullptr);
            EXPECT_NEAR(decibels[bin], 0.0, 0.01) << name << ", bin " << bin;
            for (size_t k = 0; k < decibels.size(); ++k) {
                EXPECT_GE(decibels[k], -120.0f) << name << ", bin " << k;
                if (k + 6 < bin || k > bin + 6) {
                    EXPECT_LT(decibels[k], -40.0f) << name << ", bin " << k << " beside " << bin;
                }
            }
        }
}

TEST(SpectrumRoad, APreEmphasisShowsItsResponse)
{
    std::vector<float> adjustment(powers);
    ORVA_CreatePreEmphAdjust(adjustment.data(), length, 0.97);
    for (size_t bin : {20u, 100u, 400u}) {
        const double response = std::abs(
            1.0 - 0.97 * std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(bin) / length));
        const auto decibels = spectrumOfSine(3, bin, adjustment.data());
        EXPECT_NEAR(decibels[bin], 20.0 * std::log10(response), 0.01) << bin;
    }
}
