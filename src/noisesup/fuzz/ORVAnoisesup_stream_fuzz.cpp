// Fuzz target: two suppressors in turn, in floats and in 16 bits, in place and not. The first bytes choose rate and degrees,
// the others which goes on and with what. Each has the bits of direct calls of the WebRTC library in the order of its own
// frames, or, at 32000 Hz, silence; nothing is written beside a frame.
#include "noisesup/ORVAnoisesup_reference.h"
#include "support/fuzz.h"

#include <algorithm>

using namespace noisesup;
using support::Bytes;

namespace
{

// x * 32768, rounded to nearest, ties to even, limited to 16 bits; not-a-number is 0.
int16_t word(float x)
{
    if (std::isnan(x))
        return 0;
    return static_cast<int16_t>(std::clamp(std::nearbyint(double{x} * 32768.0), -32768.0, 32767.0));
}

struct Twins {
    Twins(int32_t rate, int policy) : wrapped(suppressor(rate, policy)), direct(rate, policy) {}

    Frame expected(const Frame &input)
    {
        return direct.sampleRate == 32000 ? Frame(input.size()) : direct.run(input);
    }

    Suppressor wrapped;
    Direct direct;
};

// One frame between two samples that stay as they are.
template <typename Sample, typename Run>
std::vector<Sample> run(const std::vector<Sample> &input, bool inPlace, Run execute)
{
    constexpr Sample canary = 77;
    std::vector<Sample> output(input.size() + 2, canary);
    if (inPlace)
        std::copy(input.begin(), input.end(), output.begin() + 1);
    support::require(execute(inPlace ? &output[1] : input.data(), &output[1]) == 1, "a frame is cleaned");
    support::require(output.front() == canary && output.back() == canary, "nothing is written beside it");
    return {output.begin() + 1, output.end() - 1};
}

// Some blocks one after the other, up to a frame.
std::vector<float> frameOf(Bytes &bytes, size_t length)
{
    std::vector<float> samples;
    for (size_t blocks = 1 + bytes.below(5); blocks > 0; --blocks) {
        const auto block = bytes.block();
        samples.insert(samples.end(), block.begin(), block.end());
    }
    samples.resize(length);
    return samples;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr int32_t rates[] = {16000, 8000, 32000};
    Bytes bytes(data, size);
    const int32_t rate = rates[bytes.below(3)];
    Twins streams[] = {Twins(rate, static_cast<int>(bytes.below(4))),
                       Twins(rate, static_cast<int>(bytes.below(4)))};
    for (int call = 0; call < 40 && !bytes.isAtEnd(); ++call) {
        const size_t kind = bytes.below(16);
        Twins &stream = streams[kind % 2];
        if (kind >= 14) {
            const auto policy = static_cast<int>(bytes.below(6)) - 1;
            const bool valid = policy >= 0 && policy <= 3;
            support::require(ORVA_SetNoiseSupIntensity(stream.wrapped.get(), policy) == valid,
                             "degrees are 0 to 3");
            if (valid)
                stream.direct.setPolicy(policy);
            continue;
        }
        const auto floats = frameOf(bytes, static_cast<size_t>(rate / 100));
        const bool inPlace = kind / 2 % 2 == 1;
        Frame words;
        for (const float x : floats)
            words.push_back(word(x));
        const Frame expected = stream.expected(words);
        if (kind < 7) {
            support::require(run(words, inPlace,
                                 [&](const int16_t *input, int16_t *output) {
                                     return ORVA_DoNoiseSup16(stream.wrapped.get(), input, output);
                                 }) == expected,
                             "16 bits are those of the direct calls");
        } else {
            std::vector<float> scaled;
            for (const int16_t v : expected)
                scaled.push_back(static_cast<float>(v) / 32768.0f);
            support::requireSameBits(run(floats, inPlace,
                                         [&](const float *input, float *output) {
                                             return ORVA_DoNoiseSup(stream.wrapped.get(), input, output);
                                         }),
                                     scaled);
        }
    }
    return 0;
}
