// Fuzz target: a correlation processor through many pairs of vectors. The first bytes choose the two lengths, the others the
// vectors and which form. Each result has the bits of the same steps over transforms of their own, and the values of the
// definition, summed in double, as far as floats can hold them.
#include "support/fuzz.h"
#include "xcorr/ORVAxcorr_reference.h"

#include <complex>
#include <numbers>

using namespace xcorr;
using support::Bytes;

namespace
{

using Doubles = std::vector<double>;
using Bins = std::vector<std::complex<double>>;

double norm(const Samples &samples)
{
    double sum = 0;
    for (const float x : samples)
        sum += double{x} * double{x};
    return std::sqrt(sum);
}

// Whether squares of the magnitudes in their spectra are normal numbers.
bool isTame(const Samples &samples)
{
    return std::all_of(samples.begin(), samples.end(), [](float x) { return std::fabs(x) < 1e3f; });
}

// Sum over n of input[n] exp(sign 2 pi j n k / N).
Bins transformed(const Bins &input, double sign)
{
    const size_t N = input.size();
    Bins roots, output;
    for (size_t i = 0; i < N; ++i)
        roots.push_back(
            std::polar(1.0, sign * 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(N)));
    for (size_t k = 0; k < N; ++k) {
        std::complex<double> sum = 0;
        for (size_t n = 0; n < N; ++n)
            sum += input[n] * roots[n * k % N];
        output.push_back(sum);
    }
    return output;
}

Bins spectrum(const Samples &samples, size_t N)
{
    Bins padded(N);
    std::copy(samples.begin(), samples.end(), padded.begin());
    return transformed(padded, -1);
}

// By the definition; `error` is what a result may be off. A bin of the cross-spectrum that single precision has off by d may
// turn by d / |bin|, and by anything if there is little more in it than rounding.
Doubles phatBySums(const Samples &x, const Samples &y, double &error)
{
    const size_t L = std::max(x.size(), y.size()), N = 2 * L;
    const Bins X = spectrum(x, N), Y = spectrum(y, N);
    const double rounding = 1e-5 * norm(x) * norm(y) + 1e-22; // below this a bin stays as it is
    Bins phases(N);
    error = 1e-5;
    for (size_t k = 0; k < N; ++k) {
        const std::complex<double> bin = X[k] * std::conj(Y[k]);
        phases[k] = std::abs(bin) > 0 ? bin / std::abs(bin) : 0;
        error += std::min(2.0, 2 * rounding / std::abs(bin)) / static_cast<double>(N);
    }
    const Bins circular = transformed(phases, 1);
    Doubles result;
    for (size_t j = 0; j < 2 * L - 1; ++j) // lag j - (L - 1)
        result.push_back(circular[(j + N - (L - 1)) % N].real() / static_cast<double>(N));
    return result;
}

void requireNear(const Samples &actual, const Doubles &expected, double error)
{
    support::require(actual.size() == expected.size(), "there are 2L - 1 values");
    for (size_t i = 0; i < actual.size(); ++i)
        support::require(std::fabs(double{actual[i]} - expected[i]) <= error,
                         "a value is that of the definition");
}

void correlate(ORVA_XCORR *processor, const Samples &x, const Samples &y, bool phat, bool overlaps)
{
    const size_t L = std::max(x.size(), y.size());
    const auto form = phat ? ORVA_XcorrPhatProcess : ORVA_XcorrProcExecute;
    Samples output(2 * L, 7.0f);
    std::copy(x.begin(), x.end(), output.begin());
    const int32_t count = form(processor, overlaps ? output.data() : x.data(), y.data(), output.data());
    support::require(count == static_cast<int32_t>(2 * L) - 1, "2L - 1 values are written");
    support::require(output.back() == 7.0f, "and none after them");
    output.pop_back();
    support::requireSameBits(output, bySteps(x, y, phat));
    if (!isTame(x) || !isTame(y))
        return;
    double error = 1e-6 * norm(x) * norm(y) / static_cast<double>(L) + 1e-35;
    const Doubles expected = phat ? phatBySums(x, y, error) : bySums(x, y);
    requireNear(output, expected, error);
}

// The largest magnitude over all lags, by the square root of the product of the powers.
void coefficient(const Samples &x, const Samples &y)
{
    int32_t lag = INT32_MIN;
    const double actual = ORVA_XcorrCoef(x.data(), lengthOf(x), y.data(), lengthOf(y), &lag);
    const auto L = static_cast<double>(std::max(x.size(), y.size()));
    support::require(std::abs(lag) <= std::max(static_cast<int32_t>(L), 1) - 1, "a lag is one of 2L - 1");
    if (!isTame(x) || !isTame(y) || norm(x) < 1e-10 || norm(y) < 1e-10)
        return;
    const Doubles sums = bySums(x, y);
    const double scale = std::sqrt(static_cast<double>(x.size() * y.size())) / (norm(x) * norm(y));
    double largest = 0;
    for (const double value : sums)
        largest = std::max(largest, std::fabs(value) * scale);
    support::require(std::fabs(actual - largest) <= 1e-5, "a coefficient is that of the definition");
    const auto at = static_cast<size_t>(lag + static_cast<int32_t>(L) - 1);
    support::require(std::fabs(sums[at]) * scale >= largest - 2e-5, "its lag is that of the peak");
}

Samples vectorOf(Bytes &bytes, size_t length)
{
    Samples samples = bytes.block();
    samples.resize(length);
    samples.shrink_to_fit(); // a sanitizer sees a read after it
    return samples;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Bytes bytes(data, size);
    const size_t lengthX = bytes.below(33), lengthY = bytes.below(33);
    static Processor processors[33][33]; // made once each: planning is slow
    Processor &xcorr = processors[lengthX][lengthY];
    if (xcorr == nullptr)
        xcorr = processor(lengthX, lengthY);
    support::require(xcorr != nullptr, "there is a processor");
    for (int call = 0; call < 12 && !bytes.isAtEnd(); ++call) {
        const size_t kind = bytes.below(8);
        const Samples x = vectorOf(bytes, lengthX), y = vectorOf(bytes, lengthY);
        if (lengthX == 0 && lengthY == 0) {
            float untouched = 7.0f;
            const auto form = kind < 4 ? ORVA_XcorrProcExecute : ORVA_XcorrPhatProcess;
            support::require(form(xcorr.get(), x.data(), y.data(), &untouched) == -1 && untouched == 7.0f,
                             "two lengths of 0 execute nothing");
        } else if (kind < 7) {
            correlate(xcorr.get(), x, y, kind % 2 == 1, kind >= 5);
        } else if (lengthX > 0 && lengthY > 0) { // else a vector is null
            coefficient(x, y);
        }
    }
    return 0;
}
