// Fuzz target: a zero-order hold beside its plain loop. The first bytes choose pair and direction, the others blocks, in place
// and not, and flushes, which do nothing.
#include "resample/ORVAresample_filterset.h"
#include "resample/ORVAresample_reference.h"
#include "support/fuzz.h"

using support::Bytes;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr size_t reachable = 28; // rows of the table that are the first with their pair
    Bytes bytes(data, size);
    const orva::FilterSetRow &row = orva::FilterSet[bytes.below(reachable)];
    const auto coefficients = static_cast<size_t>(row.count);
    const Rates rates =
        bytes.below(2) == 0 ? Rates{row.rateLow, row.rateHigh} : Rates{row.rateHigh, row.rateLow};
    const auto resampler = newResampler(rates, "type=zoh");
    support::require(resampler != nullptr, "there is a converter");
    PlainHold plain(rates, {row.denominator, coefficients}, {row.numerator, coefficients});

    for (int call = 0; call < 40 && !bytes.isAtEnd(); ++call) {
        auto input = bytes.block();
        const auto expected = plain.run(input);
        const auto count = static_cast<int32_t>(input.size());
        const size_t how = bytes.below(4);
        // The room that the header asks for; in place it is the input's as well.
        const size_t room = input.size() * static_cast<size_t>(rates.output / rates.input + 1);
        std::vector<float> output(std::max<size_t>(room, 1)); // never null
        input.resize(std::max<size_t>(input.size(), 1));
        if (how == 1)
            std::copy_n(input.begin(), count, output.begin());
        const int32_t written =
            ORVA_Resample(resampler.get(), how == 1 ? output.data() : input.data(), output.data(), count);
        support::require(written >= 0 && written <= std::ssize(output), "a block is converted");
        output.resize(static_cast<size_t>(written));
        support::requireSameBits(output, expected);
        if (how == 2) {
            float untouched = 7.0f;
            support::require(ORVA_ResampleFlushBufferSize(resampler.get()) == 0 &&
                                 ORVA_ResampleFlushBuffersEx(resampler.get(), &untouched, 1) == 0 &&
                                 untouched == 7.0f,
                             "a hold has no flush");
        }
    }
    return 0;
}
