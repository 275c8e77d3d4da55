// Resampling: the polyphase converter with coefficients of our own, the zero-order hold, the designed taps.
#include "families.h"
#include "numbers.h"
#include "resample/ORVAresample_handle.h"
#include "resample/ORVAresample_polyphase.h"

#include <orva/ORVAresample.h>

#include <algorithm>
#include <memory>
#include <string>

namespace bits
{
namespace
{

struct Rates {
    int32_t from;
    int32_t to;
};

// Ratios of every layout of the bank: in groups, in rows, in rows without room for groups; whole and broken, up and down.
constexpr Rates ratios[] = {{44100, 48000}, {48000, 44100}, {1, 1},  {1, 2},  {2, 1},    {1, 3},
                            {3, 1},         {7, 8},         {8, 7},  {9, 8},  {8, 9},    {16, 17},
                            {1, 40},        {40, 1},        {3, 50}, {50, 3}, {20, 147}, {5, 24},
                            {24, 5},        {1, 8},         {8, 1},  {1, 16}, {1000, 7}, {7, 100}};

constexpr Rates holds[] = {{48000, 44100}, {44100, 32000}, {22050, 16000}, {11025, 8000},  {32000, 22050},
                           {16000, 11025}, {48000, 32000}, {96000, 48000}, {32000, 16000}, {16000, 8000},
                           {44100, 22050}, {22050, 11025}, {96000, 44100}, {48000, 22050}, {44100, 16000},
                           {22050, 8000},  {32000, 11025}, {96000, 32000}, {48000, 16000}, {32000, 8000},
                           {44100, 11025}, {96000, 22050}, {48000, 11025}, {44100, 8000},  {96000, 16000},
                           {48000, 8000},  {96000, 11025}, {96000, 8000}};

struct Destroy {
    void operator()(ORVA_RESAMPLER *converter) const
    {
        ORVA_ResampleDestroy(converter);
    }
};

using Converter = std::unique_ptr<ORVA_RESAMPLER, Destroy>;

Converter polyphase(Rates rates, int32_t order, bool compensates)
{
    const std::string config =
        "order=" + std::to_string(order) + "; delaycompensation=" + std::to_string(int32_t{compensates});
    return Converter(ORVA_ResampleInit(rates.from, rates.to, config.c_str()));
}

// Every place of the bank with the coefficient of h that belongs there. Of banks in groups each lane is one, those that the
// last group shares with the one before among them.
template <class Visit> void forEachTap(const orva::PolyphaseBank &bank, Visit visit)
{
    if (bank.groupSize != 0) {
        for (int32_t group = 0; group < orva::groupCount(bank); ++group) {
            const int64_t first = orva::groupStart(bank, group);
            const int64_t newest = orva::newestSample(bank, first + orva::groupLanes - 1);
            for (int64_t row = 0; row < bank.groupRows; ++row)
                for (int32_t lane = 0; lane < orva::groupLanes; ++lane)
                    visit(bank.coefs + group * bank.groupSize + row * orva::groupLanes + lane,
                          (first + lane) * bank.down - (newest - row) * bank.up);
        }
        return;
    }
    for (int64_t output = 0; output < bank.round; ++output) {
        orva::BankPlace at = orva::placeOf(bank, output);
        const int64_t phase = output * bank.down - orva::newestSample(bank, output) * bank.up;
        for (int64_t j = 0; j < bank.taps; ++j) {
            visit(at.coefs, phase + j * bank.up);
            orva::goToOlderSample(bank, at);
        }
    }
}

// In the place of the designed coefficients, which pass through sine and cosine; those beyond the filter stay zero.
void replaceTaps(Numbers &numbers, ORVA_RESAMPLER &converter, int64_t length)
{
    const auto *resampler = static_cast<const orva::PolyphaseResampler *>(converter.impl);
    std::vector<double> h(static_cast<size_t>(length));
    for (double &x : h)
        x = numbers.real();
    forEachTap(resampler->bank, [&](const double *tap, int64_t k) {
        if (k >= 0 && k < length)
            *const_cast<double *>(tap) = h[static_cast<size_t>(k)];
    });
}

void run(Numbers &numbers, ORVA_RESAMPLER *converter, Rates rates, int32_t samples, bool isFinite,
         Digest &results)
{
    for (int32_t left = samples; left > 0;) {
        const int32_t block = numbers.integer(1, std::min(left, 1 + samples / numbers.integer(1, 20)));
        const size_t from = numbers.size(0, 7), to = numbers.size(0, 7);
        const auto input =
            numbers.vector(from + static_cast<size_t>(block),
                           isFinite || left > samples / 10 ? &Numbers::finite : &Numbers::mixed);
        const auto room = static_cast<size_t>(int64_t{block} * (rates.to / rates.from + 1) + 1);
        std::vector<float> output(to + room);
        results.add(ORVA_Resample(converter, input.data() + from, output.data() + to, block));
        results.add(output);
        left -= block;
    }
}

} // namespace

void resampleSums(Digest &results)
{
    Numbers numbers(14);
    for (int32_t round = 0; round < 4; ++round)
        for (const Rates &rates : ratios) {
            const int32_t order = numbers.integer(1, round == 0 ? 3 : 24);
            const Converter converter = polyphase(rates, order, numbers.coin());
            const auto *resampler = static_cast<const orva::PolyphaseResampler *>(converter->impl);
            const int32_t longer = std::max(resampler->upFactor, resampler->downFactor);
            replaceTaps(numbers, *converter, 2 * int64_t{order} * longer + 1);
            const auto share =
                static_cast<int32_t>(int64_t{20000} * rates.from / std::max(rates.from, rates.to));
            run(numbers, converter.get(), rates, share + 10, numbers.coin(), results);
            std::vector<float> tail(static_cast<size_t>(ORVA_ResampleFlushBufferSize(converter.get())));
            results.add(ORVA_ResampleFlushBuffersEx(converter.get(), tail.data(), 0));
            results.add(tail);
        }
}

void resampleHold(Digest &results)
{
    Numbers numbers(15);
    for (const Rates &pair : holds)
        for (const Rates rates : {pair, Rates{pair.to, pair.from}}) {
            const Converter converter(ORVA_ResampleInit(rates.from, rates.to, "type=zoh"));
            run(numbers, converter.get(), rates, 5000, false, results);
        }
}

void resampleTaps(Digest &results)
{
    Numbers numbers(16);
    for (const Rates &rates : ratios) {
        const Converter converter = polyphase(rates, numbers.integer(1, 40), true);
        forEachTap(static_cast<const orva::PolyphaseResampler *>(converter->impl)->bank,
                   [&](const double *tap, int64_t) { results.add(*tap); });
    }
}

} // namespace bits
