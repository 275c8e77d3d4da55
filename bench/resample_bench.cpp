// Noise in blocks of 1024 samples through the polyphase converter of order 30: ours, the textbook loop of
// the same filter, and peers: two sincs of libsamplerate, soxr at high quality, Speex's at its best. Beside
// it the hold, where it has the pair. Times are for a sample of output.
#include <benchmark/benchmark.h>

#include <orva/ORVAresample.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <random>
#include <samplerate.h>
#include <soxr.h>
#include <speex/speex_resampler.h>
#include <string>
#include <vector>

namespace
{

constexpr int32_t blockLength = 1024;
constexpr int32_t order = 30;

struct Rates {
    int32_t input, output;
};

std::vector<float> noise(size_t length)
{
    std::mt19937 engine(1);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    std::vector<float> samples(length);
    for (float &x : samples)
        x = uniform(engine);
    return samples;
}

// The textbook: a delay line that is shifted by each sample, and a sum for each output.
class Textbook
{
public:
    explicit Textbook(Rates rates)
        : up(rates.output / std::gcd(rates.input, rates.output)),
          down(rates.input / std::gcd(rates.input, rates.output))
    {
        const int32_t half = order * std::max(up, down);
        const auto taps = static_cast<size_t>(2 * half / up + 1);
        phases.assign(static_cast<size_t>(up), std::vector<double>(taps));
        past.resize(taps);
        const double pi = std::acos(-1.0), cutoff = 0.95 / std::max(up, down);
        for (int32_t i = 0; i <= 2 * half; ++i) {
            const double t = i - half;
            const double sinc = i == half ? cutoff : std::sin(pi * cutoff * t) / (pi * t);
            const double window = 0.42 + 0.5 * std::cos(pi * t / half) + 0.08 * std::cos(2 * pi * t / half);
            phases[static_cast<size_t>(i % up)][static_cast<size_t>(i / up)] = up * sinc * window;
        }
    }

    int32_t run(const float *input, float *output, int32_t count)
    {
        int32_t written = 0;
        for (int32_t i = 0; i < count; ++i) {
            std::copy_backward(past.begin(), past.end() - 1, past.end());
            past[0] = input[i];
            for (; phase < up; phase += down) {
                const std::vector<double> &h = phases[static_cast<size_t>(phase)];
                double sum = 0.0;
                for (size_t j = 0; j < h.size(); ++j)
                    sum += h[j] * past[j];
                output[written++] = static_cast<float>(sum);
            }
            phase -= up;
        }
        return written;
    }

private:
    int32_t up, down, phase = 0;
    std::vector<std::vector<double>> phases;
    std::vector<double> past;
};

// Times run(input, output), which gives the samples written, over blocks of a stream.
template <class Run> void add(const std::string &name, Rates rates, Run run)
{
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) mutable {
        const auto input = noise(blockLength);
        std::vector<float> output(static_cast<size_t>(blockLength * (rates.output / rates.input + 1) + 1));
        int64_t samples = 0;
        for (auto _ : state) {
            samples += run(input.data(), output.data(), static_cast<int32_t>(output.size()));
            benchmark::DoNotOptimize(output.data());
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(samples);
        if (name.ends_with("/orva"))
            state.counters["M/s"] =
                benchmark::Counter(static_cast<double>(samples) / 1e6, benchmark::Counter::kIsRate);
    });
}

void addOurs(const std::string &name, Rates rates, const char *config)
{
    const std::shared_ptr<ORVA_RESAMPLER> resampler(ORVA_ResampleInit(rates.input, rates.output, config),
                                                    ORVA_ResampleDestroy);
    add(name, rates, [=](const float *input, float *output, int32_t) {
        return ORVA_Resample(resampler.get(), input, output, blockLength);
    });
}

void addLibsamplerate(const std::string &name, Rates rates, int quality)
{
    int error = 0;
    const std::shared_ptr<SRC_STATE> peer(src_new(quality, 1, &error), src_delete);
    add(name, rates, [=](const float *input, float *output, int32_t room) {
        SRC_DATA data{};
        data.data_in = input;
        data.data_out = output;
        data.input_frames = blockLength;
        data.output_frames = room;
        data.src_ratio = static_cast<double>(rates.output) / rates.input;
        src_process(peer.get(), &data);
        return static_cast<int32_t>(data.output_frames_gen);
    });
}

void addSoxr(const std::string &name, Rates rates)
{
    soxr_error_t error = nullptr;
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    const std::shared_ptr<soxr> peer(
        soxr_create(rates.input, rates.output, 1, &error, nullptr, &quality, nullptr), soxr_delete);
    add(name, rates, [=](const float *input, float *output, int32_t room) {
        size_t taken = 0, written = 0;
        soxr_process(peer.get(), input, static_cast<size_t>(blockLength), &taken, output,
                     static_cast<size_t>(room), &written);
        return static_cast<int32_t>(written);
    });
}

void addSpeex(const std::string &name, Rates rates)
{
    int error = 0;
    const std::shared_ptr<SpeexResamplerState> peer(
        speex_resampler_init(1, static_cast<uint32_t>(rates.input), static_cast<uint32_t>(rates.output),
                             SPEEX_RESAMPLER_QUALITY_MAX, &error),
        speex_resampler_destroy);
    add(name, rates, [=](const float *input, float *output, int32_t room) {
        uint32_t taken = blockLength, written = static_cast<uint32_t>(room);
        speex_resampler_process_float(peer.get(), 0, input, &taken, output, &written);
        return static_cast<int32_t>(written);
    });
}

const bool registered = [] {
    for (const Rates rates : {Rates{44100, 48000}, {48000, 44100}, {48000, 16000}, {16000, 48000}}) {
        const std::string pair = std::to_string(rates.input) + " to " + std::to_string(rates.output);
        const std::string name = pair + ", polyphase";
        addOurs(name + "/orva", rates, "order=30");
        add(name + "/plain", rates,
            [textbook = Textbook(rates)](const float *input, float *output, int32_t) mutable {
                return textbook.run(input, output, blockLength);
            });
        addLibsamplerate(name + "/samplerate_fast", rates, SRC_SINC_FASTEST);
        addLibsamplerate(name + "/samplerate_medium", rates, SRC_SINC_MEDIUM_QUALITY);
        addSoxr(name + "/soxr", rates);
        addSpeex(name + "/speex", rates);
        addOurs(pair + ", hold/orva", rates, "type=zoh");
    }
    return true;
}();

} // namespace
