// What is computed before and after transforms: powers, products, decibels, correlation, lapped transform.
#include "families.h"
#include "fft/kernels/ORVAfft_kernels.h"
#include "fmclt/kernels/ORVAfmclt_kernels.h"
#include "numbers.h"
#include "xcorr/kernels/ORVAxcorr_kernels.h"

#include <orva/ORVAcomplex.h>
#include <orva/ORVAfmclt.h>

#include <cmath>

namespace bits
{
namespace
{

// Finite and not, so that overflow and the products of infinities are met, and not only they.
auto drawing(Numbers &numbers)
{
    return numbers.coin() ? &Numbers::mixed : &Numbers::finite;
}

ORVA_COMPLEX *binsAt(std::vector<float> &values, size_t offset)
{
    return reinterpret_cast<ORVA_COMPLEX *>(values.data() + offset);
}

// Powers as they may come: from far below one to far above, zero, below zero, and what is no number.
float power(Numbers &numbers)
{
    const int32_t exponent = numbers.integer(-60, 30);
    switch (numbers.integer(0, 7)) {
    case 0:
        return numbers.mixed();
    case 1:
        return std::bit_cast<float>(static_cast<uint32_t>(numbers.next()) & 0x7fffffff);
    default:
        return std::ldexp(numbers.sample() + 1.0f, exponent);
    }
}

struct Decibels {
    std::vector<float> bins; // all but the last
    float last;
};

Decibels decibels(Numbers &numbers)
{
    const size_t offset = numbers.size(0, 15), M = numbers.size(1, 200);
    std::vector<float> powers(offset + M + 4), adjustments(offset + M + 4), output(offset + M + 4);
    for (size_t i = 0; i < powers.size(); ++i) {
        powers[i] = power(numbers);
        adjustments[i] = numbers.mixed();
    }
    const bool isAdjusted = numbers.coin();
    const bool isInPlace = numbers.coin();
    const double norm = static_cast<double>(numbers.sample()) + 1.0;
    const double range = 100.0 * numbers.real() + 100.0;
    float *to = isInPlace ? powers.data() : output.data();
    ORVA_PSDtoDB(static_cast<int32_t>(2 * M), powers.data() + offset, to + offset,
                 isAdjusted ? adjustments.data() + offset : nullptr, norm, range);
    return {std::vector<float>(to + offset, to + offset + M), to[offset + M]};
}

} // namespace

void spectra(Digest &results)
{
    Numbers numbers(5);
    for (int32_t round = 0; round < 1500; ++round) {
        const auto draw = drawing(numbers);
        const size_t offset = numbers.size(0, 15), count = numbers.size(0, 300);
        const auto bins = static_cast<int32_t>(count);
        auto a = numbers.vector(offset + 2 * count, draw);
        auto b = numbers.vector(offset + 2 * count, draw);
        std::vector<float> powers(offset + count);
        orva::kernels<orva::FftKernels>().powers(binsAt(a, offset), powers.data() + offset, bins);
        results.add(powers);
        ORVA_COMPLEX *output = numbers.coin() ? binsAt(a, offset) : binsAt(b, offset);
        if (bins > 40 && numbers.coin()) // over an input, shifted
            ORVA_ComplexVectorMultiply(binsAt(a, offset), binsAt(b, offset), output + numbers.size(0, 40),
                                       bins - 40);
        else
            ORVA_ComplexVectorMultiply(binsAt(a, offset), binsAt(b, offset), output, bins);
        results.add(a);
        results.add(b);
    }
    for (int32_t round = 0; round < 5000; ++round)
        results.add(decibels(numbers).bins);
}

void decibelsAndEmphasis(Digest &results)
{
    Numbers numbers(6);
    for (int32_t round = 0; round < 20000; ++round)
        results.add(decibels(numbers).last);
    for (int32_t length = 2; length < 1000; length += numbers.integer(1, 9)) {
        std::vector<float> response(static_cast<size_t>(length) / 2 + 1);
        ORVA_CreatePreEmphAdjust(response.data(), length, numbers.real());
        results.add(response);
    }
}

void correlation(Digest &results)
{
    Numbers numbers(7);
    const auto &kernels = orva::kernels<orva::XcorrKernels>();
    for (int32_t round = 0; round < 2500; ++round) {
        const auto draw = drawing(numbers);
        const size_t offset = numbers.size(0, 15), count = numbers.size(0, 300);
        const auto bins = static_cast<int32_t>(count);
        auto x = numbers.vector(offset + 2 * count, draw);
        auto y = numbers.vector(offset + 2 * count, draw);
        std::vector<float> z(offset + 2 * count);
        std::vector<float> &output = numbers.coin() ? z : numbers.coin() ? x : y;
        const auto combine = numbers.coin() ? kernels.combinePlain : kernels.combinePhat;
        combine(binsAt(x, offset), binsAt(y, offset), binsAt(output, offset), bins, numbers.mixed());
        results.add(output);
    }
}

void lappedTransform(Digest &results)
{
    Numbers numbers(8);
    const auto &kernels = orva::kernels<orva::FmcltKernels>();
    for (int32_t round = 0; round < 1500; ++round) {
        const auto draw = drawing(numbers);
        const size_t offset = numbers.size(0, 15), count = numbers.size(1, 200);
        const auto M = static_cast<int32_t>(count);
        auto bins = numbers.vector(offset + 2 * count + 2, draw);
        const auto window = numbers.vector(offset + 2 * count + 2, &Numbers::sample);
        std::vector<float> real(offset + count), imag(offset + count);
        const float scale = numbers.sample();
        kernels.coefficientsOf(bins.data() + offset, window.data() + offset, real.data() + offset,
                               imag.data() + offset, M, scale);
        results.add(real);
        results.add(imag);
        kernels.innerBinsOf(real.data() + offset, imag.data() + offset, window.data() + offset,
                            bins.data() + offset, M, scale);
        results.add(bins);
        kernels.overlapAdd(bins.data() + offset, bins.data() + offset + count, real.data() + offset,
                           imag.data() + offset, M, numbers.real() + 2.0);
        results.add(real);
        results.add(imag);
        kernels.divide(bins.data() + offset, M, scale);
        results.add(bins);
    }
}

void twiddles(Digest &results)
{
    Numbers numbers(9);
    for (int32_t M = 1; M < 4000; M += numbers.integer(1, 30)) {
        std::vector<float> window(2 * static_cast<size_t>(M) + 2);
        ORVA_FMCLTFreqWindow(window.data(), M);
        results.add(window);
    }
}

} // namespace bits
