// One frame through the suppressor beside direct calls of the WebRTC functions on frames that are in their
// form already. Times are for a sample.
#include "cases.h"
#include "noisesup/ORVAnoisesup_webrtc.h"

#include <orva/ORVAnoisesup.h>

#include <array>

namespace
{

constexpr size_t band = 160;
constexpr size_t frames = 100; // a second, over and over

using Suppressor = Owned<ORVA_NOISESUP, ORVA_DestroyNoiseSup>;
using Instance = Owned<NsHandle, orva::freeNs>;

// Noise at -26 dB.
std::vector<float> quietNoise(size_t length, float fullScale)
{
    std::vector<float> samples = noise(length);
    for (float &x : samples)
        x *= 0.0868f * fullScale;
    return samples;
}

Instance instance(int rate)
{
    NsHandle *ns = nullptr;
    orva::createNs(&ns);
    WebRtcNs_Init(ns, static_cast<uint32_t>(rate));
    WebRtcNs_set_policy(ns, 2);
    return Instance(ns);
}

auto oneBand(int rate, size_t frame)
{
    return [input = quietNoise(frames * frame + band, 32768.0f), ns = instance(rate), frame,
            next = size_t{0}]() mutable {
        std::array<float, band> output;
        const float *const in[] = {input.data() + next * frame, nullptr, nullptr};
        float *const out[] = {output.data(), nullptr, nullptr};
        WebRtcNs_Process(ns.get(), in, 1, out);
        benchmark::DoNotOptimize(output);
        next = (next + 1) % frames;
    };
}

// At 32000 Hz the filters that split a frame and merge it are calls of the dependency as well. What is merged
// is silence, as ours does.
auto twoBands()
{
    std::vector<int16_t> words;
    for (const float x : quietNoise(frames * 2 * band, 32768.0f))
        words.push_back(static_cast<int16_t>(x));
    return [words, ns = instance(32000), next = size_t{0}, states = std::array<int32_t, 24>{}]() mutable {
        std::array<int16_t, band> low, high;
        std::array<int16_t, 2 * band> merged;
        std::array<float, band> lowIn, highIn, lowOut, highOut;
        const std::array<int16_t, band> silence{};
        WebRtcSpl_AnalysisQMF(words.data() + next * 2 * band, 2 * band, low.data(), high.data(), &states[0],
                              &states[6]);
        for (size_t i = 0; i < band; ++i) {
            lowIn[i] = low[i];
            highIn[i] = high[i];
        }
        const float *const in[] = {lowIn.data(), highIn.data(), nullptr};
        float *const out[] = {lowOut.data(), highOut.data(), nullptr};
        WebRtcNs_Process(ns.get(), in, 2, out);
        benchmark::DoNotOptimize(lowOut);
        benchmark::DoNotOptimize(highOut);
        WebRtcSpl_SynthesisQMF(silence.data(), silence.data(), band, merged.data(), &states[12], &states[18]);
        benchmark::DoNotOptimize(merged);
        next = (next + 1) % frames;
    };
}

template <class Sample, class Do> auto suppressed(int32_t rate, size_t frame, float fullScale, Do run)
{
    const std::vector<float> samples = quietNoise(frames * frame, fullScale);
    return [input = std::vector<Sample>(samples.begin(), samples.end()), output = std::vector<Sample>(frame),
            suppressor = Suppressor(ORVA_CreateNoiseSupEx(rate, 2)), frame, next = size_t{0}, run]() mutable {
        run(suppressor.get(), input.data() + next * frame, output.data());
        next = (next + 1) % frames;
    };
}

void addRate(int32_t rate)
{
    const auto frame = static_cast<size_t>(rate / 100);
    const auto direct = [=](const std::string &name) {
        if (rate == 32000)
            addCase(name, frame, [] { return twoBands(); });
        else
            addCase(name, frame, [=] { return oneBand(rate, frame); });
    };
    const std::string name = std::to_string(rate) + " Hz, ";
    addLevels(name + "float", frame, [=] { return suppressed<float>(rate, frame, 1.0f, ORVA_DoNoiseSup); });
    direct(name + "float/bare");
    addLevels(name + "16 bits", frame,
              [=] { return suppressed<int16_t>(rate, frame, 32768.0f, ORVA_DoNoiseSup16); });
    direct(name + "16 bits/bare");
}

const bool registered = [] {
    for (int32_t rate : {8000, 16000, 32000})
        addRate(rate);
    return true;
}();

} // namespace
