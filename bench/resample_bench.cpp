// Noise in blocks of 1024 samples through the polyphase converter of order 30: ours, the textbook loop of
// the same filter, and peers: two sincs of libsamplerate, soxr at high quality, Speex's at its best. Beside
// it the hold, where it has the pair. Times are for a sample of output.
#include "cases.h"

#include <orva/ORVAresample.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <samplerate.h>
#include <soxr.h>
#include <speex/speex_resampler.h>

namespace
{

constexpr int32_t blockLength = 1024;
constexpr int32_t order = 30;

using Resampler = Owned<ORVA_RESAMPLER, ORVA_ResampleDestroy>;
using Libsamplerate = Owned<SRC_STATE, src_delete>;
using Soxr = Owned<soxr, soxr_delete>;
using Speex = Owned<SpeexResamplerState, speex_resampler_destroy>;

struct Rates {
    int32_t input, output;
};

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

// Times what make() gives, a function that returns the samples it has written, over blocks of a stream.
template <class Make> void add(const std::string &name, Rates rates, Make make)
{
    const auto stream = [=] {
        const int32_t room = blockLength * (rates.output / rates.input + 1) + 1;
        return [run = make(), room, input = noise(blockLength),
                output = std::vector<float>(static_cast<size_t>(room))]() mutable {
            return run(input.data(), output.data(), room);
        };
    };
    addStream(name, stream, [](benchmark::State &state, double samples) {
        state.counters["M/s"] = aSecond(samples / 1e6);
    });
}

void addOurs(const std::string &name, Rates rates, const char *config)
{
    add(name, rates, [=] {
        Resampler ours(ORVA_ResampleInit(rates.input, rates.output, config));
        return [ours = std::move(ours)](const float *input, float *output, int32_t) {
            return ORVA_Resample(ours.get(), input, output, blockLength);
        };
    });
}

void addPlain(const std::string &name, Rates rates)
{
    add(name, rates, [=] {
        return [textbook = Textbook(rates)](const float *input, float *output, int32_t) mutable {
            return textbook.run(input, output, blockLength);
        };
    });
}

void addLibsamplerate(const std::string &name, Rates rates, int quality)
{
    add(name, rates, [=] {
        int error = 0;
        Libsamplerate peer(src_new(quality, 1, &error));
        return [rates, peer = std::move(peer)](const float *input, float *output, int32_t room) {
            SRC_DATA data{};
            data.data_in = input;
            data.data_out = output;
            data.input_frames = blockLength;
            data.output_frames = room;
            data.src_ratio = static_cast<double>(rates.output) / rates.input;
            src_process(peer.get(), &data);
            return data.output_frames_gen;
        };
    });
}

void addSoxr(const std::string &name, Rates rates)
{
    add(name, rates, [=] {
        soxr_error_t error = nullptr;
        const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
        Soxr peer(soxr_create(rates.input, rates.output, 1, &error, nullptr, &quality, nullptr));
        return [peer = std::move(peer)](const float *input, float *output, int32_t room) {
            size_t taken = 0, written = 0;
            soxr_process(peer.get(), input, static_cast<size_t>(blockLength), &taken, output,
                         static_cast<size_t>(room), &written);
            return written;
        };
    });
}

void addSpeex(const std::string &name, Rates rates)
{
    add(name, rates, [=] {
        int error = 0;
        Speex peer(speex_resampler_init(1, static_cast<uint32_t>(rates.input),
                                        static_cast<uint32_t>(rates.output), SPEEX_RESAMPLER_QUALITY_MAX,
                                        &error));
        return [peer = std::move(peer)](const float *input, float *output, int32_t room) {
            uint32_t taken = blockLength, written = static_cast<uint32_t>(room);
            speex_resampler_process_float(peer.get(), 0, input, &taken, output, &written);
            return written;
        };
    });
}

const bool registered = [] {
    for (const Rates rates : {Rates{44100, 48000}, {48000, 44100}, {48000, 16000}, {16000, 48000}}) {
        const std::string pair = std::to_string(rates.input) + " to " + std::to_string(rates.output);
        const std::string name = pair + ", polyphase";
        addOurs(name + "/orva", rates, "order=30");
        addPlain(name + "/plain", rates);
        addLibsamplerate(name + "/samplerate_fast", rates, SRC_SINC_FASTEST);
        addLibsamplerate(name + "/samplerate_medium", rates, SRC_SINC_MEDIUM_QUALITY);
        addSoxr(name + "/soxr", rates);
        addSpeex(name + "/speex", rates);
        addOurs(pair + ", hold/orva", rates, "type=zoh");
    }
    return true;
}();

} // namespace
