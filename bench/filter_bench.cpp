// Both structures at each level against their textbook loops, liquid-dsp and, for biquads, SoX's effect, the last two with
// one channel, as they run. And a whole design, from its text to a filter that can run, against that of liquid-dsp, in
// single precision from numbers; its time is that of one design.
#include "cases.h"
#include "filter_peers.h"

#include <orva/ORVAfilter.h>

// Before liquid.h, which then takes its types from here.
#include <complex>

#include <liquid/liquid.h>
#include <sox.h>

#include <cstdio>

namespace
{

using Filter = Owned<_ORVA_FILTER, ORVA_DestroyFilter>;
using Liquid = Owned<std::remove_pointer_t<iirfilt_rrrf>, iirfilt_rrrf_destroy>;

struct Shape {
    size_t channels;
    size_t frames;
    size_t floats() const
    {
        return channels * frames;
    }
};

// Makes what make() gives, a function of a block, a case on noise.
template <class Make> auto onNoise(Shape shape, Make make)
{
    return [=] {
        return [=, run = make(), input = noise(shape.floats()),
                output = std::vector<float>(shape.floats())]() mutable {
            run({shape.channels, shape.frames, input.data(), output.data()});
        };
    };
}

template <class Make> void add(const std::string &name, Shape shape, Make make)
{
    addCase(name, shape.floats(), onNoise(shape, make));
}

template <class Create> void addOurs(const std::string &name, Shape shape, Create create)
{
    const auto make = [=] {
        return [filter = Filter(create())](const peers::Block &block) {
            ORVA_Filter(filter.get(), block.input, block.output,
                        static_cast<uint32_t>(block.channels * block.frames));
        };
    };
    addLevels(name, shape.floats(), onNoise(shape, make));
}

void runLiquid(const Liquid &filter, const peers::Block &block)
{
    iirfilt_rrrf_execute_block(filter.get(), const_cast<float *>(block.input),
                               static_cast<unsigned>(block.frames), block.output);
}

// SoX filters 32-bit integers, in double within a section; a cascade is one effect after the other over the block.
class SoxCascade
{
public:
    explicit SoxCascade(const std::vector<peers::Section> &sections)
    {
        for (const auto &s : sections) {
            Effect effect(sox_create_effect(sox_find_effect("biquad")));
            std::vector<std::string> numbers;
            for (double value : {s.b0, s.b1, s.b2, 1.0, s.a1, s.a2})
                numbers.push_back(std::to_string(value));
            std::vector<char *> arguments;
            for (auto &number : numbers)
                arguments.push_back(number.data());
            effect->in_signal.channels = 1;
            effect->in_signal.rate = 48000.0;
            effect->out_signal = effect->in_signal;
            if (sox_effect_options(effect.get(), 6, arguments.data()) != SOX_SUCCESS ||
                effect->handler.start(effect.get()) != SOX_SUCCESS)
                std::fprintf(stderr, "SoX refuses a section\n");
            effects.push_back(std::move(effect));
        }
    }

    void run(const peers::Block &block)
    {
        input.resize(block.frames, 1 << 24);
        output.resize(block.frames);
        const sox_sample_t *from = input.data();
        for (auto &effect : effects) {
            size_t taken = block.frames, given = block.frames;
            effect->handler.flow(effect.get(), from, output.data(), &taken, &given);
            from = output.data();
        }
    }

private:
    using Effect = Owned<sox_effect_t, sox_delete_effect>;

    std::vector<Effect> effects;
    std::vector<sox_sample_t> input, output;
};

std::string title(const char *structure, size_t count, Shape shape)
{
    return structure + std::to_string(count) + ", channels " + std::to_string(shape.channels) + ", frames " +
           std::to_string(shape.frames);
}

void addDirect(size_t order, Shape shape)
{
    const std::string name = title("direct form, order ", order, shape);
    const auto length = static_cast<int32_t>(order + 1);
    std::vector<double> b(order + 1, 0.3), a(order + 1, 0.3 / static_cast<double>(order + 1));
    a[0] = 1.0;
    addOurs(name, shape, [=] {
        return ORVA_CreateFilterFromCoefs(static_cast<uint32_t>(shape.channels), length, b.data(),
                                          static_cast<uint32_t>(length), a.data());
    });
    const std::vector<float> num(b.begin(), b.end()), den(a.begin(), a.end());
    const auto addLoop = [&](const char *peer, auto loop) {
        add(name + peer, shape, [=] {
            return [=, states = std::vector<float>(order * shape.channels + 1)](
                       const peers::Block &block) mutable {
                loop({order, num.data(), den.data()}, states.data(), block);
            };
        });
    };
    addLoop("/textbook", peers::directForm);
    addLoop("/transposed", peers::transposedForm);
    if (shape.channels == 1)
        add(name + "/liquid", shape, [=] {
            auto x = num, y = den;
            const auto count = static_cast<unsigned>(length);
            return [filter = Liquid(iirfilt_rrrf_create(x.data(), count, y.data(), count))](
                       const peers::Block &block) { runLiquid(filter, block); };
        });
}

void addBiquads(size_t count, Shape shape)
{
    const std::string name = title("biquads, sections ", count, shape);
    const std::vector<peers::Section> sections(count, {-0.94, 0.33, 0.15, 0.15, 0.09});
    addOurs(name, shape, [=] {
        return ORVA_CreateFilterFromBiquads(static_cast<int32_t>(shape.channels),
                                            static_cast<uint32_t>(count), &sections[0].a1);
    });
    const auto addLoop = [&](const char *peer, auto loop) {
        add(name + peer, shape, [=] {
            return [=, states = std::vector<double>(2 * count * shape.channels)](
                       const peers::Block &block) mutable {
                loop(sections.data(), count, states.data(), block);
            };
        });
    };
    addLoop("/textbook", peers::biquads);
    addLoop("/transposed", peers::transposedBiquads);
    if (shape.channels > 1)
        return;
    add(name + "/liquid", shape, [=] {
        std::vector<float> b, a;
        for (const auto &s : sections) {
            for (double value : {s.b0, s.b1, s.b2})
                b.push_back(static_cast<float>(value));
            for (double value : {1.0, s.a1, s.a2})
                a.push_back(static_cast<float>(value));
        }
        return [filter = Liquid(iirfilt_rrrf_create_sos(b.data(), a.data(), static_cast<unsigned>(count)))](
                   const peers::Block &block) { runLiquid(filter, block); };
    });
    add(name + "/SoX", shape, [=] {
        return [cascade = SoxCascade(sections)](const peers::Block &block) mutable { cascade.run(block); };
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
    for (size_t frames : {1024, 64})
        for (size_t channels : {1, 2, 6}) {
            for (size_t order : {1, 2, 4, 8, 12})
                addDirect(order, {channels, frames});
            for (size_t sections : {1, 4, 10})
                addBiquads(sections, {channels, frames});
        }
    return true;
}();

} // namespace
