// Filters: both structures in blocks cut anywhere, filters made from text, designs.
#include "families.h"
#include "filter/ORVAfilter_internal.h"
#include "numbers.h"

#include <orva/ORVAfilter.h>

#include <algorithm>
#include <memory>
#include <string>

namespace bits
{
namespace
{

struct Destroy {
    void operator()(_ORVA_FILTER *filter) const
    {
        ORVA_DestroyFilter(filter);
    }
};

using Filter = std::unique_ptr<_ORVA_FILTER, Destroy>;

// Sections with their poles inside the unit circle.
std::vector<double> stableSections(Numbers &numbers, size_t count)
{
    std::vector<double> records(5 * count);
    for (size_t s = 0; s < count; ++s) {
        double *record = records.data() + 5 * s;
        record[1] = 0.97 * numbers.real();
        record[0] = 0.97 * numbers.real() * (1.0 + record[1]);
        for (size_t k = 2; k < 5; ++k)
            record[k] = numbers.real();
    }
    return records;
}

// A stream of interleaved channels in blocks; now and then a block has frames apart, or an output that is its input or
// overlaps it.
void run(Numbers &numbers, _ORVA_FILTER *filter, size_t channels, size_t frames, Digest &results)
{
    for (size_t left = frames; left > 0;) {
        const size_t block = numbers.size(1, static_cast<int32_t>(std::min<size_t>(left, 150)));
        const size_t stride = channels + (numbers.integer(0, 3) == 0 ? numbers.size(1, 3) : 0);
        const size_t offset = numbers.size(0, 7);
        const size_t shift = numbers.coin() ? 0 : numbers.size(1, 9);
        const auto length = static_cast<uint32_t>((block - 1) * stride + channels + offset);
        // What is not finite stays in the recursion: that comes at the end.
        const auto draw = left <= 20 ? &Numbers::mixed : &Numbers::finite;
        auto input = numbers.vector(length + shift, draw);
        if (numbers.integer(0, 2) == 0) {
            ORVA_FilterEx(filter, input.data(), input.data() + shift, length, static_cast<uint32_t>(offset),
                          static_cast<uint32_t>(stride));
            results.add(input);
        } else {
            std::vector<float> output(length);
            ORVA_FilterEx(filter, input.data(), output.data(), length, static_cast<uint32_t>(offset),
                          static_cast<uint32_t>(stride));
            results.add(output);
        }
        left -= block;
    }
}

std::vector<double> recordsOf(const Filter &filter)
{
    if (filter == nullptr)
        return {};
    const auto *state = static_cast<const orva::_DFIISOSstate *>(filter->state);
    return {state->coefs, state->coefs + 5 * state->numBiquads};
}

const char *pick(Numbers &numbers, std::initializer_list<const char *> words)
{
    return *(words.begin() + numbers.integer(0, static_cast<int32_t>(words.size()) - 1));
}

} // namespace

void directForm(Digest &results)
{
    Numbers numbers(10);
    for (int32_t round = 0; round < 700; ++round) {
        const size_t channels = round % 3 == 0 ? 1 : numbers.size(1, 18);
        std::vector<double> b(numbers.size(1, 22)), a(numbers.size(1, 22));
        for (double &x : b)
            x = numbers.real();
        for (double &x : a)
            x = numbers.real() / static_cast<double>(a.size());
        a[0] = numbers.real() + 2.0;
        const Filter filter(ORVA_CreateFilterFromCoefs(static_cast<uint32_t>(channels),
                                                       static_cast<int32_t>(b.size()), b.data(),
                                                       static_cast<uint32_t>(a.size()), a.data()));
        run(numbers, filter.get(), channels, 1500 / channels, results);
        ORVA_ResetFilter(filter.get());
        run(numbers, filter.get(), channels, 40, results);
    }
}

void biquads(Digest &results)
{
    Numbers numbers(11);
    for (int32_t round = 0; round < 900; ++round) {
        const size_t channels = round % 3 == 0 ? 1 : numbers.size(1, 18);
        const size_t sections = numbers.size(0, round % 2 == 0 ? 4 : 40);
        const auto create = [&] {
            const std::vector<double> records = stableSections(numbers, sections + 1);
            return Filter(ORVA_CreateFilterFromBiquads(static_cast<int32_t>(channels),
                                                       static_cast<uint32_t>(sections), records.data()));
        };
        const Filter filter = create(), other = create();
        run(numbers, filter.get(), channels, 1500 / channels, results);
        ORVA_ResetFilter(filter.get());
        run(numbers, filter.get(), channels, 40, results);
        ORVA_CopyFilterMemories(other.get(), filter.get());
        const std::vector<double> records = stableSections(numbers, sections + 1);
        ORVA_UpdateFilterBiquads(other.get(), static_cast<uint32_t>(sections), records.data());
        run(numbers, other.get(), channels, 40, results);
    }
}

void filterText(Digest &results)
{
    Numbers numbers(12);
    for (int32_t round = 0; round < 2000; ++round) {
        double x[5];
        for (double &coefficient : x)
            coefficient = numbers.real();
        const int32_t a1 = numbers.integer(-9, 9);
        const Filter filter(ORVA_CreateFilter("biquads=[%.17g %.10e %f %g %+.3f; %d %.1f 0.25 0 1e-3], nc=%d",
                                              x[0], x[1], 10.0 * x[2], 1e-6 * x[3], 100.0 * x[4], a1, x[0],
                                              1 + round % 2));
        results.add(recordsOf(filter));
    }
}

// Every type by every approximation, by order and by attenuation.
void filterDesigns(Digest &results)
{
    Numbers numbers(13);
    for (int32_t round = 0; round < 3000; ++round) {
        const char *type = pick(numbers, {"lowpass", "highpass", "bandpass", "bandreject"});
        const char *approximation = pick(numbers, {"butterworth", "chebyshev1", "chebyshev2", "ellip"});
        int32_t edges[4]; // in Hz, of a rate of 48000, at least 100 apart
        edges[0] = numbers.integer(100, 6000);
        for (size_t i = 1; i < 4; ++i)
            edges[i] = edges[i - 1] + numbers.integer(100, 5800);
        const bool isBand = type[0] == 'b';
        const bool isInside = type[0] == 'h' || type[4] == 'r'; // the stopband below the passband, or within
        const int32_t pass1 = isBand ? edges[isInside ? 0 : 1] : edges[isInside ? 1 : 0];
        const int32_t stop1 = isBand ? edges[isInside ? 1 : 0] : edges[isInside ? 0 : 1];
        const int32_t pass2 = edges[isInside ? 3 : 2];
        const int32_t stop2 = edges[isInside ? 2 : 3];
        const int32_t Ap = numbers.integer(1, 9), As = numbers.integer(20, 90),
                      order = numbers.integer(0, 12);
        const Filter filter(
            ORVA_CreateFilter("type=%s; approximation=%s; fs=48000; Ap=0.%d; As=%d; order=%d; "
                              "fpass1=%d; fstop1=%d; fpass2=%d; fstop2=%d",
                              type, approximation, Ap, As, order, pass1, stop1, pass2, stop2));
        results.add(recordsOf(filter));
    }
}

} // namespace bits
