// Noise in blocks of 1024 and of 64 samples through the polyphase converter of order 30, beside the textbook loop of the
// same filter and peers: two sincs of libsamplerate, soxr at high quality, zita-resampler with a half-length of 32, Speex's
// at quality 5. The hold is beside a loop of only the multiplications and additions in it that wait for each other. Times
// are for a sample of output.
#include "cases.h"

#include <orva/ORVAresample.h>

#include <samplerate.h>
#include <soxr.h>
#include <speex/speex_resampler.h>
#include <zita-resampler/resampler.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{

constexpr int32_t order = 30;
constexpr int zitaHalfLength = 32;
constexpr int speexQuality = 5;

using Converter = Owned<ORVA_RESAMPLER, ORVA_ResampleDestroy>;
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

// What is converted: the rates, and the samples of a block.
struct Conversion {
    Rates rates;
    int32_t block;

    int32_t room() const
    {
        return block * (rates.output / rates.input + 1) + 1;
    }
};

// Blocks of a stream through what make() gives, a function that returns the samples it has written.
template <class Make> auto streamOf(Conversion c, Make make)
{
    return [=] {
        return [run = make(), room = c.room(), input = noise(static_cast<size_t>(c.block)),
                output = std::vector<float>(static_cast<size_t>(c.room()))]() mutable {
            return run(input.data(), output.data(), room);
        };
    };
}

auto ours(Conversion c, const char *config)
{
    return streamOf(c, [=] {
        Converter converter(ORVA_ResampleInit(c.rates.input, c.rates.output, config));
        return [c, converter = std::move(converter)](const float *input, float *output, int32_t) {
            return ORVA_Resample(converter.get(), input, output, c.block);
        };
    });
}

auto textbook(Conversion c)
{
    return streamOf(c, [=] {
        return [c, converter = Textbook(c.rates)](const float *input, float *output, int32_t) mutable {
            return converter.run(input, output, c.block);
        };
    });
}

auto libsamplerate(Conversion c, int quality)
{
    return streamOf(c, [=] {
        int error = 0;
        Libsamplerate peer(src_new(quality, 1, &error));
        return [c, peer = std::move(peer)](const float *input, float *output, int32_t room) {
            SRC_DATA data{};
            data.data_in = input;
            data.data_out = output;
            data.input_frames = c.block;
            data.output_frames = room;
            data.src_ratio = static_cast<double>(c.rates.output) / c.rates.input;
            src_process(peer.get(), &data);
            return data.output_frames_gen;
        };
    });
}

auto soxr(Conversion c)
{
    return streamOf(c, [=] {
        soxr_error_t error = nullptr;
        const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
        Soxr peer(soxr_create(c.rates.input, c.rates.output, 1, &error, nullptr, &quality, nullptr));
        return [c, peer = std::move(peer)](const float *input, float *output, int32_t room) {
            size_t taken = 0, written = 0;
            soxr_process(peer.get(), input, static_cast<size_t>(c.block), &taken, output,
                         static_cast<size_t>(room), &written);
            return written;
        };
    });
}

auto zita(Conversion c)
{
    return streamOf(c, [=] {
        auto peer = std::make_unique<Resampler>();
        peer->setup(static_cast<unsigned>(c.rates.input), static_cast<unsigned>(c.rates.output), 1,
                    zitaHalfLength);
        return [c, peer = std::move(peer)](const float *input, float *output, int32_t room) {
            peer->inp_count = static_cast<unsigned>(c.block);
            peer->inp_data = const_cast<float *>(input); // only read
            peer->out_count = static_cast<unsigned>(room);
            peer->out_data = output;
            peer->process();
            return room - static_cast<int32_t>(peer->out_count);
        };
    });
}

auto speex(Conversion c)
{
    return streamOf(c, [=] {
        int error = 0;
        Speex peer(speex_resampler_init(1, static_cast<uint32_t>(c.rates.input),
                                        static_cast<uint32_t>(c.rates.output), speexQuality, &error));
        return [c, peer = std::move(peer)](const float *input, float *output, int32_t room) {
            auto taken = static_cast<uint32_t>(c.block), written = static_cast<uint32_t>(room);
            speex_resampler_process_float(peer.get(), 0, input, &taken, output, &written);
            return written;
        };
    });
}

// A sample of the higher rate costs at least what its output waits for: y = b x + s, then s = x - a y.
auto bareRecursion(Conversion c)
{
    return streamOf(c, [=] {
        return [c, state = 0.0](const float *input, float *output, int32_t) mutable {
            const double a = 0.5, b = 0.5;
            const double ratio = static_cast<double>(c.rates.output) / c.rates.input;
            const int32_t repeats = std::max(static_cast<int32_t>(std::lround(ratio)), 1);
            for (int32_t i = 0; i < c.block; ++i)
                for (int32_t k = 0; k < repeats; ++k) {
                    const double x = static_cast<double>(input[i]);
                    const double y = b * x + state;
                    state = x - a * y;
                    output[i] = static_cast<float>(y);
                }
            return std::max<int64_t>(std::lround(c.block * ratio), 1);
        };
    });
}

const bool registered = [] {
    const Rates allRates[] = {{44100, 48000}, {48000, 44100}, {48000, 16000}, {16000, 48000}};
    for (const Rates rates : allRates) {
        const std::string pair = std::to_string(rates.input) + " to " + std::to_string(rates.output);
        for (const int32_t block : {64, 1024}) {
            const Conversion c = {rates, block};
            const std::string name =
                pair + ", polyphase" + (block == 1024 ? "" : ", blocks of " + std::to_string(block));
            addStreamLevels(name, ours(c, "order=30"));
            addStream(name + "/soxr", soxr(c));
            addStream(name + "/zita", zita(c));
            addStream(name + "/speex 5", speex(c));
            if (block == 1024) {
                addStream(name + "/textbook", textbook(c));
                addStream(name + "/samplerate_fast", libsamplerate(c, SRC_SINC_FASTEST));
                addStream(name + "/samplerate_medium", libsamplerate(c, SRC_SINC_MEDIUM_QUALITY));
            }
        }
        const Conversion c = {rates, 1024};
        addStream(pair + ", hold/orva", ours(c, "type=zoh"));
        addStream(pair + ", hold/bare", bareRecursion(c));
    }
    return true;
}();

} // namespace
