// The transforms by their definition, in double.
#pragma once

#include "fft/ORVAfft_internal.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <vector>

namespace reference
{

using Bins = std::vector<std::complex<double>>;

// bins[k] = sum over n of x[n] exp(-2 pi i k n / N), k = 0 .. N/2
inline Bins forward(const std::vector<float> &x)
{
    const size_t length = x.size();
    Bins bins(length / 2 + 1);
    for (size_t k = 0; k < bins.size(); ++k)
        for (size_t n = 0; n < length; ++n)
            bins[k] += static_cast<double>(x[n]) *
                       std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(k * n % length) /
                                           static_cast<double>(length));
    return bins;
}

struct Free {
    void operator()(void *block) const
    {
        fftwf_free(block);
    }
};

// Runs the transform of a record on aligned data and gives the largest distance from the definition, relative
// to the largest value: forward from x to bins, inverse from bins to N x.
inline double deviation(const ORVA_FFT *fft, bool inverse, const std::vector<float> &x, const Bins &bins)
{
    const std::unique_ptr<float[], Free> real(fftwf_alloc_real(x.size()));
    const std::unique_ptr<fftwf_complex[], Free> spectrum(fftwf_alloc_complex(bins.size()));
    double worst = 0.0;
    double largest = 0.0;
    if (inverse) {
        for (size_t k = 0; k < bins.size(); ++k) {
            spectrum[k][0] = static_cast<float>(bins[k].real());
            spectrum[k][1] = static_cast<float>(bins[k].imag());
        }
        fftwf_execute_dft_c2r(fft->plan, spectrum.get(), real.get());
        for (size_t n = 0; n < x.size(); ++n) {
            const double expected = static_cast<double>(x[n]) * static_cast<double>(x.size());
            worst = std::max(worst, std::abs(static_cast<double>(real[n]) - expected));
            largest = std::max(largest, std::abs(expected));
        }
    } else {
        std::copy(x.begin(), x.end(), real.get());
        fftwf_execute_dft_r2c(fft->plan, real.get(), spectrum.get());
        for (size_t k = 0; k < bins.size(); ++k) {
            const std::complex<double> actual(spectrum[k][0], spectrum[k][1]);
            worst = std::max(worst, std::abs(actual - bins[k]));
            largest = std::max(largest, std::abs(bins[k]));
        }
    }
    return worst / largest;
}

// What single precision allows.
constexpr double tolerance = 2e-6;

} // namespace reference
