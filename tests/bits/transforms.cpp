#include "transforms.h"

#include "numbers.h"

#include <orva/ORVAcomplex.h>
#include <orva/ORVAfft.h>
#include <orva/ORVAfmclt.h>
#include <orva/ORVAxcorr.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace bits
{
namespace
{

using Reals = std::vector<double>;
using Bins = std::vector<std::complex<double>>;

constexpr int32_t lengths[] = {1, 2, 3, 4, 5, 7, 8, 16, 30, 64, 97, 128, 240, 256, 331, 480, 512, 960};

// The sum over n of x[n] exp(-2 pi j k n / N), for all k.
Bins transformed(const Bins &x)
{
    const size_t N = x.size();
    Bins turns(N), bins(N);
    for (size_t i = 0; i < N; ++i)
        turns[i] = std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(N));
    for (size_t k = 0; k < N; ++k)
        for (size_t n = 0; n < N; ++n)
            bins[k] += x[n] * turns[k * n % N];
    return bins;
}

Bins widened(const std::vector<float> &x, size_t length)
{
    Bins values(x.begin(), x.end());
    values.resize(length);
    return values;
}

// The largest distance seen, over the largest value of its vector.
void note(double &largest, const std::vector<float> &actual, const Reals &expected)
{
    double distance = 0.0, scale = 0.0;
    for (size_t i = 0; i < expected.size(); ++i) {
        const double off = std::abs(static_cast<double>(actual[i]) - expected[i]);
        distance = off > distance || std::isnan(off) ? off : distance;
        scale = std::max(scale, std::abs(expected[i]));
    }
    largest = std::isnan(distance) ? distance : std::max(largest, distance / scale);
}

std::vector<Distance> distancesOfTransforms()
{
    Numbers numbers(101);
    double forward = 0.0, powers = 0.0, inverse = 0.0;
    for (const int32_t N : lengths) {
        const auto length = static_cast<size_t>(N);
        const auto x = numbers.vector(length, &Numbers::sample);
        ORVA_FFT *fft = ORVA_FFTProcCreate(N), *ifft = ORVA_IFFTProcCreate(N);
        ORVA_COMPLEX *bins = ORVA_CreateComplexVector(fft);
        std::vector<float> power(length + 4), parts, output(length);
        ORVA_FFTProcExecutePSDEx(fft, x.data(), power.data(), nullptr);
        ORVA_FFTProcExecute(fft, x.data(), bins);
        const Bins expected = transformed(widened(x, length));
        Reals expectedParts, expectedPowers;
        for (size_t k = 0; k <= length / 2; ++k) {
            parts.insert(parts.end(), {bins[k].re, bins[k].im});
            expectedParts.insert(expectedParts.end(), {expected[k].real(), expected[k].imag()});
            expectedPowers.push_back(std::norm(expected[k]));
        }
        note(forward, parts, expectedParts);
        note(powers, power, expectedPowers);
        ORVA_IFFTProcExecuteEx(ifft, bins, output.data(), true);
        note(inverse, output, Reals(x.begin(), x.end()));
        ORVA_DestroyComplexVector(bins);
        ORVA_FFTProcDestroy(fft);
        ORVA_FFTProcDestroy(ifft);
    }
    return {{"fft forward", forward, 1e-6}, {"fft powers", powers, 2e-6}, {"fft inverse", inverse, 1e-6}};
}

// By the definition: the inverse transform of X conj(Y), for PHAT of its phases alone; negative lags first.
Reals correlated(const std::vector<float> &x, const std::vector<float> &y, bool isPhat)
{
    const size_t L = std::max(x.size(), y.size());
    const Bins X = transformed(widened(x, 2 * L)), Y = transformed(widened(y, 2 * L));
    Bins products(2 * L);
    for (size_t k = 0; k < 2 * L; ++k) {
        products[k] = std::conj(X[k] * std::conj(Y[k])); // conjugated, a forward transform is an inverse one
        products[k] /= isPhat ? std::abs(products[k]) : static_cast<double>(L);
    }
    const Bins lags = transformed(products);
    Reals result;
    for (size_t t = 1; t < 2 * L; ++t)
        result.push_back(lags[(L + t) % (2 * L)].real() / static_cast<double>(2 * L));
    return result;
}

std::vector<Distance> distancesOfCorrelation()
{
    Numbers numbers(102);
    double plain = 0.0, phat = 0.0, coefficient = 0.0;
    for (const int32_t lengthX : {1, 5, 64, 100, 331}) {
        const int32_t lengthY = numbers.integer(1, 200);
        const auto x = numbers.vector(static_cast<size_t>(lengthX), &Numbers::sample);
        const auto y = numbers.vector(static_cast<size_t>(lengthY), &Numbers::sample);
        ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(lengthX, lengthY);
        std::vector<float> output(static_cast<size_t>(ORVA_XcorrVectorLength(xcorr)));
        const Reals expected = correlated(x, y, false);
        ORVA_XcorrProcExecute(xcorr, x.data(), y.data(), output.data());
        note(plain, output, expected);
        ORVA_XcorrPhatProcess(xcorr, x.data(), y.data(), output.data());
        note(phat, output, correlated(x, y, true));
        ORVA_XcorrProcDestroy(xcorr);

        double peak = 0.0, powerX = 0.0, powerY = 0.0;
        for (const double r : expected)
            peak = std::max(peak, std::abs(r));
        for (const double v : x)
            powerX += v * v / lengthX;
        for (const double v : y)
            powerY += v * v / lengthY;
        const double actual = ORVA_XcorrCoef(x.data(), lengthX, y.data(), lengthY, nullptr);
        note(coefficient, {static_cast<float>(actual)}, {peak / std::sqrt(powerX * powerY)});
    }
    return {
        {"xcorr plain", plain, 1e-6}, {"xcorr PHAT", phat, 1e-4}, {"xcorr coefficient", coefficient, 1e-6}};
}

// Of lengths that four divides: there and back a stream comes out as it was, one block late; and the sine transform
//     S[k] = sqrt(2 / M) sum over n of x[n] sin(pi / M (n + 1/2) (k + 1/2))
std::vector<Distance> distancesOfLappedTransform()
{
    Numbers numbers(103);
    double thereAndBack = 0.0, sine = 0.0;
    for (const int32_t M : {4, 8, 60, 64, 100, 256, 480}) {
        const auto length = static_cast<size_t>(M);
        ORVA_FMCLT *fmclt = ORVA_FMCLTProcCreate(M);
        std::vector<float> window(2 * length + 2), real(length), imag(length), history(length),
            overlap(length), output(length), before(length);
        ORVA_FMCLTFreqWindow(window.data(), M);
        for (int32_t block = 0; block < 4; ++block) {
            const auto x = numbers.vector(length, &Numbers::sample);
            ORVA_FMCLTDirect(fmclt, real.data(), imag.data(), x.data(), history.data(), window.data());
            ORVA_FMCLTInverse(fmclt, real.data(), imag.data(), output.data(), overlap.data(), window.data());
            if (block > 0)
                note(thereAndBack, output, Reals(before.begin(), before.end()));
            before = x;
        }
        Reals expected(length);
        for (size_t k = 0; k < length; ++k) {
            for (size_t n = 0; n < length; ++n)
                expected[k] +=
                    static_cast<double>(before[n]) *
                    std::sin(std::numbers::pi *
                             static_cast<double>((2 * n + 1) * (2 * k + 1) % (8 * length)) / (4.0 * M));
            expected[k] *= std::sqrt(2.0 / M);
        }
        alignas(64) float data[512]; // a transform takes an aligned one
        std::copy(before.begin(), before.end(), data);
        ORVA_FMCLTCDTiv(fmclt, data);
        note(sine, {data, data + M}, expected);
        ORVA_FMCLTProcDestroy(fmclt);
    }
    return {{"fmclt there and back", thereAndBack, 2e-6}, {"fmclt sine transform", sine, 1e-6}};
}

} // namespace

std::vector<Distance> distances()
{
    std::vector<Distance> all = distancesOfTransforms();
    for (const auto &some : {distancesOfCorrelation(), distancesOfLappedTransform()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

} // namespace bits
