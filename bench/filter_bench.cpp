// Both structures against their textbook loops: a delay line per channel that is shifted at each sample. And a whole
// design, from its text to a filter that can run, against that of liquid-dsp, in single precision from numbers; its
// time is that of one design.
#include "cases.h"

#include <orva/ORVAfilter.h>

#include <complex> // before liquid.h, which then takes its types from here
#include <liquid/liquid.h>

namespace
{

constexpr size_t frames = 1024;

using Filter = Owned<_ORVA_FILTER, ORVA_DestroyFilter>;

void plainDirect(const std::vector<float> &b, const std::vector<float> &a, std::vector<float> &delays,
                 size_t channels, const std::vector<float> &input, std::vector<float> &output)
{
    const size_t order = b.size() - 1;
    for (size_t i = 0; i < input.size(); i += channels) {
        for (size_t c = 0; c < channels; ++c) {
            float *delay = delays.data() + c * order;
            float w = input[i + c];
            for (size_t k = 0; k < order; ++k)
                w -= a[k + 1] * delay[k];
            float y = b[0] * w;
            for (size_t k = 0; k < order; ++k)
                y += b[k + 1] * delay[k];
            for (size_t k = order; k-- > 1;)
                delay[k] = delay[k - 1];
            if (order > 0)
                delay[0] = w;
            output[i + c] = y;
        }
    }
}

struct Section {
    double a1, a2, b0, b1, b2;
};

struct Delay {
    double w1, w2;
};

void plainBiquads(const std::vector<Section> &sections, std::vector<Delay> &delays, size_t channels,
                  const std::vector<float> &input, std::vector<float> &output)
{
    for (size_t i = 0; i < input.size(); i += channels) {
        for (size_t c = 0; c < channels; ++c) {
            float x = input[i + c];
            for (size_t s = 0; s < sections.size(); ++s) {
                const Section &section = sections[s];
                Delay &delay = delays[c * sections.size() + s];
                const double w = static_cast<double>(x) - section.a1 * delay.w1 - section.a2 * delay.w2;
                x = static_cast<float>(section.b0 * w + section.b1 * delay.w1 + section.b2 * delay.w2);
                delay.w2 = delay.w1;
                delay.w1 = w;
            }
            output[i + c] = x;
        }
    }
}

// Times what make() gives, a function of input and output, on one block of noise.
template <class Make> void add(const std::string &name, size_t channels, Make make)
{
    const size_t samples = frames * channels;
    addCase(name, samples, [=] {
        return [run = make(), input = noise(samples), output = std::vector<float>(samples)]() mutable {
            run(input, output);
        };
    });
}

auto filterOf(_ORVA_FILTER *created)
{
    return [filter = Filter(created)](const std::vector<float> &input, std::vector<float> &output) {
        ORVA_Filter(filter.get(), input.data(), output.data(), static_cast<uint32_t>(input.size()));
    };
}

std::string title(const char *structure, size_t count, size_t channels)
{
    return structure + std::to_string(count) + ", channels " + std::to_string(channels);
}

void addDirect(size_t order, size_t channels)
{
    const std::string name = title("direct form, order ", order, channels);
    std::vector<double> b(order + 1, 0.3), a(order + 1, 0.3 / static_cast<double>(order + 1));
    a[0] = 1.0;
    add(name + "/orva", channels, [=] {
        const auto length = static_cast<int32_t>(order + 1);
        return filterOf(ORVA_CreateFilterFromCoefs(static_cast<uint32_t>(channels), length, b.data(),
                                                   static_cast<uint32_t>(length), a.data()));
    });
    add(name + "/plain", channels, [=] {
        return [channels, num = std::vector<float>(b.begin(), b.end()),
                den = std::vector<float>(a.begin(), a.end()), delays = std::vector<float>(order * channels)](
                   const std::vector<float> &input, std::vector<float> &output) mutable {
            plainDirect(num, den, delays, channels, input, output);
        };
    });
}

void addBiquads(size_t count, size_t channels)
{
    const std::string name = title("biquads, sections ", count, channels);
    const std::vector<Section> sections(count, {-0.94, 0.33, 0.3, 0.2, 0.1});
    add(name + "/orva", channels, [=] {
        return filterOf(ORVA_CreateFilterFromBiquads(static_cast<int32_t>(channels),
                                                     static_cast<uint32_t>(count), &sections[0].a1));
    });
    add(name + "/plain", channels, [=] {
        return [channels, sections, delays = std::vector<Delay>(count * channels)](
                   const std::vector<float> &input, std::vector<float> &output) mutable {
            plainBiquads(sections, delays, channels, input, output);
        };
    });
}

void addDesigns()
{
    const std::string name = "one design, elliptic of order 8";
    const auto rate = [](benchmark::State &state, double designs) {
        state.counters["a second"] = aSecond(designs);
    };
    const auto ours = [] {
        return [] {
            ORVA_DestroyFilter(
                ORVA_CreateFilter("approximation=ellip; order=8; Ap=1; As=60; fpass=%g; fstop=%g; fs=%d",
                                  6000.0, 7200.0, 48000));
        };
    };
    const auto liquid = [] {
        return [] {
            iirfilt_rrrf_destroy(iirfilt_rrrf_create_prototype(
                LIQUID_IIRDES_ELLIP, LIQUID_IIRDES_LOWPASS, LIQUID_IIRDES_SOS, 8, 0.125f, 0.0f, 1.0f, 60.0f));
        };
    };
    addCase(name + "/orva", 1, ours, rate);
    addCase(name + "/liquid", 1, liquid);
}

const bool registered = [] {
    addDesigns();
    for (size_t channels : {1, 2, 6}) {
        for (size_t order : {0, 1, 2, 4, 8, 12})
            addDirect(order, channels);
        for (size_t sections : {1, 2, 4, 8})
            addBiquads(sections, channels);
    }
    return true;
}();

} // namespace
