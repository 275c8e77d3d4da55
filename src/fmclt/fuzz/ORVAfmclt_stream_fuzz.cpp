// Fuzz target: several streams through one lapped processor. The first bytes choose block length and number of streams, the
// others which stream goes on, with what. Each stream has the bits that it has alone, through a processor of its own, and the
// values of the definition, summed in double, as far as floats can hold them.
#include "fmclt/ORVAfmclt_reference.h"
#include "support/fuzz.h"

#include <algorithm>
#include <numbers>

using namespace fmclt;
using std::numbers::pi;
using support::Bytes;

namespace
{

// The factors of the definition for one block length, each at n + 2M k:
//     sqrt(2 / M) sin((n + 1/2) pi / 2M) wave((n + (M + 1) / 2) (k + 1/2) pi / M)
struct Kernels {
    explicit Kernels(size_t blockLength) : length(blockLength)
    {
        const auto M = static_cast<double>(length);
        for (size_t k = 0; k < length; ++k)
            for (size_t n = 0; n < 2 * length; ++n) {
                const double at = static_cast<double>(n);
                const double outer = std::sqrt(2 / M) * std::sin((at + 0.5) * pi / (2 * M));
                const double angle = (at + (M + 1) / 2) * (static_cast<double>(k) + 0.5) * pi / M;
                sine.push_back(outer * std::sin(angle));
                cosine.push_back(outer * std::cos(angle));
            }
    }

    size_t length;
    std::vector<double> sine, cosine;
};

constexpr size_t longest = 24;

// What is made once for a block length, since it is slow.
struct Made {
    explicit Made(size_t length)
        : kernels(length), shared(processor(static_cast<int32_t>(length))),
          alone(processor(static_cast<int32_t>(length)))
    {
        support::require(shared != nullptr && alone != nullptr, "there are processors");
    }

    Kernels kernels;
    Processor shared, alone;
};

const Made &madeFor(size_t length)
{
    static std::unique_ptr<Made> all[longest + 1];
    if (all[length] == nullptr)
        all[length] = std::make_unique<Made>(length);
    return *all[length];
}

// Sum over i of values[i] times what `factor` gives for i.
template <typename Factor> double sum(const Samples &values, Factor factor)
{
    double result = 0;
    for (size_t i = 0; i < values.size(); ++i)
        result += double{values[i]} * factor(i);
    return result;
}

// What single precision may be off in sums of these values, each times at most sqrt(2 / M): a few roundings of the largest
// sum, and of the smallest numbers.
double tolerance(const Samples &values, size_t M)
{
    double magnitudes = 0;
    for (const float x : values)
        magnitudes += std::fabs(double{x});
    return 1e-6 * std::sqrt(2 / static_cast<double>(M)) * magnitudes + 1e-42;
}

// Whether no intermediate result can be beyond the range of floats.
bool isTame(const Samples &values)
{
    return std::all_of(values.begin(), values.end(), [](float x) { return std::fabs(x) < 1e30f; });
}

void requireNear(float actual, double expected, double allowed)
{
    support::require(std::fabs(double{actual} - expected) <= allowed, "a value is that of the definition");
}

Samples block(Bytes &bytes, size_t length)
{
    Samples samples = bytes.block();
    samples.resize(length);
    return samples;
}

// One stream as it runs among others, and alone.
struct Twins {
    explicit Twins(const Made &processors)
        : made(processors), length(processors.kernels.length), together(static_cast<int32_t>(length)),
          alone(static_cast<int32_t>(length))
    {
    }

    void direct(const Samples &current)
    {
        Samples u = together.history;
        u.insert(u.end(), current.begin(), current.end());
        together.direct(made.shared, current.data());
        alone.direct(made.alone, current.data());
        requireSame();
        support::requireSameBits(together.history, current);
        if (!isTame(u))
            return;
        for (size_t k = 0; k < length; ++k) {
            const auto part = [&](const std::vector<double> &kernel) {
                return sum(u, [&](size_t n) { return kernel[n + 2 * length * k]; });
            };
            requireNear(together.real[k], -part(made.kernels.cosine), tolerance(u, length));
            requireNear(together.imag[k], part(made.kernels.sine), tolerance(u, length));
        }
    }

    // The transposed sums, half of each by either part; so it is where 4 divides M.
    void inverse()
    {
        const Samples before = together.overlap;
        const Samples output = together.inverse(made.shared);
        support::requireSameBits(output, alone.inverse(made.alone));
        requireSame();
        Samples both = together.real;
        both.insert(both.end(), together.imag.begin(), together.imag.end());
        if (!isTame(both) || !isTame(before) || length % 4 != 0)
            return;
        const auto y = [&](size_t n) {
            const auto part = [&](const Samples &coefficients, const std::vector<double> &kernel) {
                return sum(coefficients, [&](size_t k) { return kernel[n + 2 * length * k]; });
            };
            return (part(together.imag, made.kernels.sine) - part(together.real, made.kernels.cosine)) / 2;
        };
        for (size_t n = 0; n < length; ++n) {
            requireNear(output[n], y(n) + double{before[n]},
                        tolerance(both, length) + 1e-7 * std::fabs(double{before[n]}));
            requireNear(together.overlap[n], y(n + length), tolerance(both, length));
        }
    }

    void requireSame() const
    {
        support::requireSameBits(together.real, alone.real);
        support::requireSameBits(together.imag, alone.imag);
        support::requireSameBits(together.history, alone.history);
        support::requireSameBits(together.overlap, alone.overlap);
    }

    const Made &made;
    size_t length;
    Stream together, alone;
};

// data[k] = sqrt(2 / M) sum of data[n] sin(pi (n + 1/2) (k + 1/2) / M)
void sineTransform(const Processor &shared, const Samples &samples)
{
    const auto M = static_cast<double>(samples.size());
    const Aligned data(fftwf_alloc_real(samples.size()));
    std::copy(samples.begin(), samples.end(), data.get());
    ORVA_FMCLTCDTiv(shared.get(), data.get());
    if (!isTame(samples))
        return;
    for (size_t i = 0; i < samples.size(); ++i) {
        const auto k = static_cast<double>(i);
        const auto factor = [&](size_t n) {
            return std::sqrt(2 / M) * std::sin(pi * (static_cast<double>(n) + 0.5) * (k + 0.5) / M);
        };
        requireNear(data.get()[i], sum(samples, factor), tolerance(samples, samples.size()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Bytes bytes(data, size);
    const size_t length = 1 + bytes.below(longest);
    const Made &made = madeFor(length);
    std::vector<Twins> streams;
    for (size_t count = 1 + bytes.below(3); count > 0; --count)
        streams.emplace_back(made);

    for (int call = 0; call < 40 && !bytes.isAtEnd(); ++call) {
        const size_t kind = bytes.below(8);
        Twins &stream = streams[bytes.below(streams.size())];
        if (kind < 3) {
            stream.direct(block(bytes, length));
        } else if (kind < 6) {
            stream.inverse();
        } else if (kind == 6) { // changed coefficients
            stream.together.real = stream.alone.real = block(bytes, length);
            stream.together.imag = stream.alone.imag = block(bytes, length);
        } else {
            sineTransform(made.shared, block(bytes, length));
        }
    }
    return 0;
}
