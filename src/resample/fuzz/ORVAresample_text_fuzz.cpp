// Fuzz target: a converter from any text. Besides being memory-safe, the same text gives the same converter again. Texts that
// would only ask for much memory are passed over.
#include "support/fuzz.h"

#include <kett/KTdebug.h>
#include <kett/KTstring.h>
#include <orva/ORVAresample.h>

#include <cstring>

using support::Bytes;

namespace
{

constexpr int32_t largestOrder = 200;
constexpr int32_t refusedOrder = 100'000'000; // more than 1 GiB at any pair of rates
constexpr size_t longestText = 255;           // what is read of it

void count(void *context, int32_t, int32_t, const char *)
{
    ++*static_cast<int *>(context);
}

// What a converter makes of a block; nothing if there is none.
std::vector<float> run(ORVA_RESAMPLER *resampler)
{
    std::vector<float> block(200), output(800);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<float>(i % 7) - 3.0f;
    const int32_t written =
        ORVA_Resample(resampler, block.data(), output.data(), static_cast<int32_t>(block.size()));
    support::require(written >= -1, "a block is converted or refused");
    output.resize(static_cast<size_t>(std::max(written, 0)));
    return output;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr int32_t rates[] = {8000, 16000, 24000, 8100};
    Bytes bytes(data, size);
    const int32_t input = rates[bytes.below(4)], output = rates[bytes.below(4)];
    const std::string text = bytes.rest();
    std::string lower(text.c_str(), strnlen(text.c_str(), longestText));
    for (char &c : lower)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    const int32_t order = KTSTRING_GetIntegerValueFromString(lower.c_str(), "order", 30);
    if (order > largestOrder && order < refusedOrder)
        return 0;

    int messages = 0;
    KTDEBUG_SetSink(count, &messages);
    ORVA_RESAMPLER *const resampler = ORVA_ResampleInit(input, output, text.c_str());
    support::require(messages <= 1, "one message at most");
    support::require(resampler != nullptr || messages == 1, "a refusal has a message");
    ORVA_RESAMPLER *const again = ORVA_ResampleInit(input, output, text.c_str());
    support::require((resampler == nullptr) == (again == nullptr), "the same text is refused again");
    if (resampler != nullptr) {
        support::requireSameBits(run(resampler), run(again));
        support::require(ORVA_ResampleDestroy(resampler) == 1 && ORVA_ResampleDestroy(again) == 1,
                         "what there is is destroyed");
    }
    KTDEBUG_SetSink(nullptr, nullptr);
    return 0;
}
