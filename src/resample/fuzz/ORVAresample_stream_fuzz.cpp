// Fuzz target: a polyphase converter beside its definition in plainest form. The first bytes choose rates, order and
// compensation, the others blocks; the flush is at the end.
#include "resample/ORVAresample_reference.h"
#include "support/fuzz.h"

using support::Bytes;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Bytes bytes(data, size);
    const Rates rates = {static_cast<int32_t>(1 + bytes.below(16)),
                         static_cast<int32_t>(1 + bytes.below(16))};
    const auto order = static_cast<int32_t>(1 + bytes.below(9));
    const bool compensates = bytes.below(2) == 0;
    const auto resampler = newResampler(rates, "order=" + std::to_string(order) +
                                                   "; delaycompensation=" + (compensates ? "1" : "0"));
    support::require(resampler != nullptr, "there is a converter");
    PlainPolyphase plain(rates, order, compensates);

    const auto room = [&](size_t count) {
        return static_cast<size_t>(lengthAfter(static_cast<int64_t>(count), rates)) + 1;
    };
    for (int call = 0; call < 40 && !bytes.isAtEnd(); ++call) {
        auto input = bytes.block();
        const auto expected = plain.run(input);
        const auto count = static_cast<int32_t>(input.size());
        const bool inPlace = bytes.below(2) == 1;
        std::vector<float> output(std::max(room(input.size()), input.size() + 1));
        input.resize(output.size()); // never null
        if (inPlace)
            output = input;
        const int32_t written =
            ORVA_Resample(resampler.get(), inPlace ? output.data() : input.data(), output.data(), count);
        support::require(written >= 0, "a block is converted");
        output.resize(static_cast<size_t>(written));
        support::requireSameBits(output, expected);
    }
    const auto most = static_cast<int32_t>(bytes.below(8));
    std::vector<float> tail(static_cast<size_t>(ORVA_ResampleFlushBufferSize(resampler.get())) + 1);
    tail.resize(static_cast<size_t>(ORVA_ResampleFlushBuffersEx(resampler.get(), tail.data(), most)));
    support::requireSameBits(tail, plain.flush(most));
    support::require(ORVA_ResampleFlushBuffersEx(resampler.get(), tail.data(), 0) == 0, "a flush is final");
    return 0;
}
