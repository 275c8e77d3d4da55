// What becomes of sines, in figures: a few of those that the guide tells, and the delay that the header
// tells.
#include "ORVAresample_reference.h"

#include <complex>
#include <numbers>

namespace
{

constexpr Rates up{44100, 48000}, down{48000, 44100}, third{48000, 16000}, triple{16000, 48000};
constexpr double amplitude = 0.5;

// Output at a sine of a frequency, from its beginning on or after the transient.
Floats outputOf(Rates rates, const std::string &config, double hertz, size_t leftOut)
{
    const size_t length = 6000;
    const size_t wanted = leftOut + length + 200; // some of it is dropped as delay
    const size_t count = wanted * static_cast<size_t>(rates.input) / static_cast<size_t>(rates.output) + 1;
    Floats sine(count);
    for (size_t i = 0; i < count; ++i)
        sine[i] = static_cast<float>(
            amplitude * std::cos(2 * std::numbers::pi * hertz / rates.input * static_cast<double>(i)));
    const auto resampler = newResampler(rates, config);
    const Floats output = convertInBlocks(resampler.get(), rates, sine, {1024});
    const auto first = output.begin() + static_cast<std::ptrdiff_t>(leftOut);
    return {first, first + static_cast<std::ptrdiff_t>(length)};
}

struct Split {
    std::complex<double> sine; // a factor to the sine that went in
    double error;              // root mean square of the rest
};

// The least-squares fit of a sine, and what it leaves.
Split split(const Floats &samples, double hertz, double rate, double firstSample)
{
    double cc = 0, cs = 0, ss = 0, cx = 0, sx = 0;
    const auto angle = [&](size_t i) {
        return 2 * std::numbers::pi * hertz / rate * (firstSample + static_cast<double>(i));
    };
    for (size_t i = 0; i < samples.size(); ++i) {
        const double c = std::cos(angle(i)), s = std::sin(angle(i)), x = static_cast<double>(samples[i]);
        cc += c * c, cs += c * s, ss += s * s, cx += c * x, sx += s * x;
    }
    const double a = (cx * ss - sx * cs) / (cc * ss - cs * cs), b = (sx * cc - cx * cs) / (cc * ss - cs * cs);
    double rest = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const double e = static_cast<double>(samples[i]) - a * std::cos(angle(i)) - b * std::sin(angle(i));
        rest += e * e;
    }
    return {{a / amplitude, -b / amplitude}, std::sqrt(rest / static_cast<double>(samples.size()))};
}

constexpr size_t transient = 3000;

Split steady(Rates rates, const std::string &config, double hertz)
{
    return split(outputOf(rates, config, hertz, transient), hertz, rates.output, transient);
}

double signalToNoise(Rates rates, const std::string &config, double hertz)
{
    const Split s = steady(rates, config, hertz);
    return 20 * std::log10(std::abs(s.sine) * amplitude / std::numbers::sqrt2 / s.error);
}

double lowerNyquist(Rates rates)
{
    return std::min(rates.input, rates.output) / 2.0;
}

} // namespace

TEST(ResampleQuality, SignalToNoiseRatiosAreThoseOfTheGuide)
{
    const struct {
        Rates rates;
        const char *config;
        double at1kHz, at09;
    } cases[] = {
        {up, "order=10", 91, 23},      {up, "order=30", 112, 114},    {up, "order=64", 126, 128},
        {up, "type=zoh", 28, 4},       {down, "order=30", 114, 103},  {down, "type=zoh", 28, 1},
        {third, "order=30", 150, 157}, {third, "type=zoh", 153, 155}, {triple, "order=10", 53, 22},
        {triple, "order=30", 72, 59},  {triple, "order=64", 86, 73},  {triple, "type=zoh", 80, 62},
    };
    // From about there on it is the rounding of the samples to float, which goes by where they happen to lie.
    const auto bounded = [](double decibels) { return std::min(decibels, 145.0); };
    for (const auto &c : cases) {
        const double at09 = 0.9 * lowerNyquist(c.rates);
        EXPECT_NEAR(bounded(signalToNoise(c.rates, c.config, 1000)), bounded(c.at1kHz), 3)
            << c.rates << ' ' << c.config;
        EXPECT_NEAR(bounded(signalToNoise(c.rates, c.config, at09)), bounded(c.at09), 3)
            << c.rates << ' ' << c.config;
    }
}

TEST(ResampleQuality, PassbandIsFlatUpToTheTransition)
{
    for (const Rates rates : {up, down, third, triple})
        for (const int32_t order : {10, 30, 64})
            for (const double part : {0.05, 0.3, 0.6, 0.95 - 3.0 / order}) {
                const double hertz = part * lowerNyquist(rates);
                const double gain = std::abs(steady(rates, "order=" + std::to_string(order), hertz).sine);
                EXPECT_NEAR(20 * std::log10(gain), 0, order < 30 ? 0.06 : 0.02)
                    << rates << ", " << order << ", " << hertz;
            }
}

TEST(ResampleQuality, CutOffIsSixDecibelsDownAt095OfTheLowerNyquistFrequency)
{
    for (const Rates rates : {up, down, third, triple})
        for (const int32_t order : {10, 30, 64}) {
            const Split s = steady(rates, "order=" + std::to_string(order), 0.95 * lowerNyquist(rates));
            EXPECT_NEAR(std::abs(s.sine), 0.5, 0.001) << rates << ", " << order;
        }
}

TEST(ResampleQuality, AliasesLieFarBelow)
{
    const struct {
        Rates rates;
        const char *config;
        double decibels;
    } cases[] = {
        {third, "order=30", -55},
        {third, "order=64", -70},
        {third, "type=zoh", -60},
        {down, "order=30", -75},
    };
    for (const auto &c : cases) {
        const double nyquist = lowerNyquist(c.rates), highest = c.rates.input / 2.0;
        for (double hertz = 1.05 * nyquist; hertz < highest; hertz += 397) {
            const Floats output = outputOf(c.rates, c.config, hertz, transient);
            double sum = 0;
            for (const float x : output)
                sum += static_cast<double>(x) * static_cast<double>(x);
            const double level = std::sqrt(2 * sum / static_cast<double>(output.size())) / amplitude;
            EXPECT_LT(20 * std::log10(level), c.decibels + 0.5)
                << c.rates << ' ' << c.config << ", " << hertz;
        }
    }
}

// Output k is the signal at the time k + e, in samples of output.
TEST(ResampleQuality, OutputIsAsEarlyAsTheHeaderTells)
{
    for (const Rates rates : {up, down, third, triple, Rates{32000, 48000}, {7, 9}, {9, 11}}) {
        const auto M = static_cast<int32_t>(PlainPolyphase(rates, 1, true).M);
        for (const int32_t order : {10, 30, M}) {
            const PlainPolyphase plain(rates, order, true);
            const double e =
                plain.L > plain.M ? plain.delay - order * static_cast<double>(plain.L) / plain.M : 0.0;
            EXPECT_LE(std::abs(e), 0.5);
            if (order == M) {
                EXPECT_EQ(e, 0.0) << rates;
            }
            const double hertz = 0.3 * lowerNyquist(rates);
            const double phase = std::arg(steady(rates, "order=" + std::to_string(order), hertz).sine);
            EXPECT_NEAR(phase, 2 * std::numbers::pi * hertz / rates.output * e, 1e-4)
                << rates << ", " << order;
        }
    }
}
