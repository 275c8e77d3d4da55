// Streams of every kind: how they are cut, on which thread they run, what runs beside them and what was in them before changes
// no bit.
#include "support/bits.h"
#include "support/random.h"

#include <kett/KTmem.h>
#include <orva/orva.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Floats = std::vector<float>;

// One channel of something that takes blocks of any length.
class Stream
{
public:
    virtual ~Stream() = default;

    virtual Floats push(std::span<const float> block) = 0;

    virtual Floats flush()
    {
        return {};
    }

    virtual void reset() {} // does nothing where there is no such call
};

class Filter : public Stream
{
public:
    explicit Filter(_ORVA_FILTER *made) : filter(made, ORVA_DestroyFilter) {}

    Floats push(std::span<const float> block) override
    {
        Floats output(block.size() + 1);
        EXPECT_EQ(ORVA_Filter(filter.get(), block.data() != nullptr ? block.data() : output.data(),
                              output.data(), static_cast<uint32_t>(block.size())),
                  1);
        output.resize(block.size());
        return output;
    }

    void reset() override
    {
        ORVA_ResetFilter(filter.get());
    }

private:
    std::unique_ptr<_ORVA_FILTER, int32_t (*)(_ORVA_FILTER *)> filter;
};

class Resampler : public Stream
{
public:
    Resampler(int32_t input, int32_t output, const char *config)
        : resampler(ORVA_ResampleInit(input, output, config), ORVA_ResampleDestroy),
          mostOutputs(static_cast<size_t>(output / input + 1))
    {
    }

    Floats push(std::span<const float> block) override
    {
        Floats output(mostOutputs * block.size() + 1);
        const int32_t written =
            ORVA_Resample(resampler.get(), block.data() != nullptr ? block.data() : output.data(),
                          output.data(), static_cast<int32_t>(block.size()));
        EXPECT_GE(written, 0);
        output.resize(static_cast<size_t>(written));
        return output;
    }

    Floats flush() override
    {
        Floats output(static_cast<size_t>(ORVA_ResampleFlushBufferSize(resampler.get())) + 1);
        output.resize(static_cast<size_t>(ORVA_ResampleFlushBuffersEx(resampler.get(), output.data(), 0)));
        return output;
    }

private:
    std::unique_ptr<ORVA_RESAMPLER, int32_t (*)(ORVA_RESAMPLER *)> resampler;
    size_t mostOutputs;
};

// Frames of 8 samples, so that a short stream has many.
class Scaler : public Stream
{
public:
    explicit Scaler(float factor) : solafs(ORVA_SolafsCreate(1, 8000, 1), ORVA_SolafsDestroy), speed(factor)
    {
    }

    Floats push(std::span<const float> block) override
    {
        EXPECT_EQ(
            ORVA_SolafsInputData(solafs.get(), 0, block.data(), static_cast<int32_t>(block.size()), speed),
            static_cast<int32_t>(block.size()));
        Floats output(8 * (block.size() + 100));
        output.resize(static_cast<size_t>(
            ORVA_SolafsOutputData(solafs.get(), 0, output.data(), static_cast<int32_t>(output.size()))));
        return output;
    }

private:
    std::unique_ptr<ORVA_SOLAFS, void (*)(ORVA_SOLAFS *)> solafs;
    float speed;
};

constexpr double numerator[] = {0.1, 0.2, 0.3, 0.4};
constexpr double denominator[] = {2.0, -0.5, 0.25};

struct Kind {
    const char *name;
    std::function<std::unique_ptr<Stream>()> make;
};

const Kind kinds[] = {
    {"direct form",
     [] { return std::make_unique<Filter>(ORVA_CreateFilterFromCoefs(1, 4, numerator, 3, denominator)); }},
    {"biquads", [] { return std::make_unique<Filter>(ORVA_CreateFilter("order=7; fpass=0.25")); }},
    {"polyphase, up", [] { return std::make_unique<Resampler>(2, 3, "order=4"); }},
    {"polyphase, down", [] { return std::make_unique<Resampler>(7, 3, "order=3"); }},
    {"hold, up", [] { return std::make_unique<Resampler>(44100, 48000, "type=zoh"); }},
    {"hold, down", [] { return std::make_unique<Resampler>(48000, 16000, "type=zoh"); }},
    {"time scaling, slow", [] { return std::make_unique<Scaler>(0.7f); }},
    {"time scaling, fast", [] { return std::make_unique<Scaler>(3.0f); }},
};

void append(Floats &stream, const Floats &block)
{
    stream.insert(stream.end(), block.begin(), block.end());
}

// Blocks of any length, the shortest ones often.
Floats runCut(Stream &stream, std::span<const float> input, support::Random &random)
{
    Floats output;
    const int64_t longest = random.integer(1, 120);
    while (!input.empty()) {
        const int64_t wanted = random.integer(0, 3) == 0 ? random.integer(0, longest) : random.integer(0, 2);
        const size_t count = std::min(static_cast<size_t>(wanted), input.size());
        append(output, stream.push(input.first(count)));
        input = input.subspan(count);
    }
    append(output, stream.flush());
    return output;
}

Floats runWhole(Stream &stream, std::span<const float> input)
{
    Floats output = stream.push(input);
    append(output, stream.flush());
    return output;
}

constexpr size_t length = 400;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) // ten times slower
constexpr int cuts = 300;
#else
constexpr int cuts = 10'000;
#endif

} // namespace

TEST(Streams, TenThousandRandomCutsGiveTheSameBits)
{
    support::Random random;
    for (const Kind &kind : kinds) {
        const Floats input = random.noise(length);
        const Floats whole = runWhole(*kind.make(), input);
        ASSERT_GT(whole.size(), length / 4) << kind.name;
        for (int cut = 0; cut < cuts; ++cut)
            ASSERT_TRUE(support::sameBits(runCut(*kind.make(), input, random), whole))
                << kind.name << ", cut " << cut;
        KTMEM_DisposeDisplayed();
    }
}

TEST(Streams, SixtyFourOnAnyNumberOfThreadsGiveTheBitsOfOne)
{
    constexpr size_t count = 64;
    support::Random random;
    std::vector<Floats> inputs, expected;
    for (size_t i = 0; i < count; ++i) {
        inputs.push_back(random.noise(length));
        expected.push_back(runWhole(*kinds[i % std::size(kinds)].make(), inputs[i]));
    }
    for (const size_t threadCount : {1, 2, 8}) {
        std::vector<std::unique_ptr<Stream>> streams;
        for (size_t i = 0; i < count; ++i)
            streams.push_back(kinds[i % std::size(kinds)].make());
        std::vector<Floats> outputs(count);
        std::vector<std::thread> threads;
        for (size_t t = 0; t < threadCount; ++t)
            threads.emplace_back([&, t] {
                constexpr size_t block = 25;
                for (size_t at = 0; at < length; at += block)
                    for (size_t i = t; i < count; i += threadCount)
                        append(outputs[i], streams[i]->push(std::span(inputs[i]).subspan(at, block)));
                for (size_t i = t; i < count; i += threadCount)
                    append(outputs[i], streams[i]->flush());
            });
        for (std::thread &thread : threads)
            thread.join();
        for (size_t i = 0; i < count; ++i)
            EXPECT_TRUE(support::sameBits(outputs[i], expected[i]))
                << kinds[i % std::size(kinds)].name << ", " << threadCount << " threads";
    }
    KTMEM_DisposeDisplayed();
}

TEST(Streams, NotANumberIsGoneAfterAResetAndInANewObject)
{
    support::Random random;
    const Floats input = random.noise(length);
    Floats spoiled = input;
    for (size_t i = 0; i < length; i += 7)
        spoiled[i] =
            i % 2 == 0 ? std::numeric_limits<float>::quiet_NaN() : -std::numeric_limits<float>::infinity();
    for (const Kind &kind : kinds) {
        const Floats expected = runWhole(*kind.make(), input);
        const auto stream = kind.make();
        stream->push(spoiled);
        stream->reset();
        if (dynamic_cast<Filter *>(stream.get()) != nullptr) {
            EXPECT_TRUE(support::sameBits(runWhole(*stream, input), expected)) << kind.name << ", reset";
        }
        EXPECT_TRUE(support::sameBits(runWhole(*kind.make(), input), expected)) << kind.name << ", new";
    }
    KTMEM_DisposeDisplayed();
}

TEST(Streams, SeveralThroughOneLappedProcessorInAnyOrderGiveTheBitsOfEachAlone)
{
    constexpr int32_t M = 16;
    constexpr size_t streamCount = 5, blocks = 40;
    const std::unique_ptr<ORVA_FMCLT, int32_t (*)(ORVA_FMCLT *)> fmclt(ORVA_FMCLTProcCreate(M),
                                                                       ORVA_FMCLTProcDestroy);
    Floats window(2 * (M + 1));
    ORVA_FMCLTFreqWindow(window.data(), M);
    struct Lapped {
        Floats input, output, history = Floats(M), overlap = Floats(M);
        size_t done = 0;
    };
    const auto step = [&](Lapped &s) {
        Floats real(M), imag(M), block(M);
        ORVA_FMCLTDirect(fmclt.get(), real.data(), imag.data(), &s.input[M * s.done], s.history.data(),
                         window.data());
        ORVA_FMCLTInverse(fmclt.get(), real.data(), imag.data(), block.data(), s.overlap.data(),
                          window.data());
        append(s.output, real);
        append(s.output, block);
        ++s.done;
    };
    support::Random random;
    std::vector<Lapped> alone(streamCount);
    for (Lapped &s : alone)
        s.input = random.noise(M * blocks);
    std::vector<Lapped> together = alone;
    for (Lapped &s : alone)
        while (s.done < blocks)
            step(s);
    for (size_t left = streamCount * blocks; left > 0;) {
        Lapped &s = together[static_cast<size_t>(random.integer(0, streamCount - 1))];
        if (s.done < blocks) {
            step(s);
            --left;
        }
    }
    for (size_t i = 0; i < streamCount; ++i)
        EXPECT_TRUE(support::sameBits(together[i].output, alone[i].output)) << i;
}

TEST(Streams, OneTransformServesEightThreads)
{
    constexpr int32_t N = 256;
    constexpr size_t bins = N / 2 + 1;
    const std::unique_ptr<ORVA_FFT, bool (*)(ORVA_FFT *)> fft(ORVA_FFTProcCreate(N), ORVA_FFTProcDestroy);
    const auto powerOf = [&](const Floats &samples) {
        const auto floats = [](void *memory) {
            return std::unique_ptr<float, void (*)(float *)>(static_cast<float *>(memory), [](float *p) {
                ORVA_DestroyComplexVector(reinterpret_cast<ORVA_COMPLEX *>(p));
            });
        };
        const auto input = floats(ORVA_CreateComplexVector(fft.get()));
        const auto power = floats(ORVA_CreateComplexVector(fft.get()));
        std::copy(samples.begin(), samples.end(), input.get());
        EXPECT_EQ(ORVA_FFTProcExecutePSDEx(fft.get(), input.get(), power.get(), nullptr), int32_t{bins});
        return Floats(power.get(), power.get() + bins);
    };
    constexpr size_t rounds = 100;
    support::Random random;
    std::vector<Floats> inputs, expected;
    for (size_t i = 0; i < rounds; ++i) {
        inputs.push_back(random.noise(N));
        expected.push_back(powerOf(inputs[i]));
    }
    std::vector<std::thread> threads;
    for (size_t t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            for (size_t i = 0; i < rounds; ++i) {
                const size_t which = (i + 13 * t) % rounds;
                EXPECT_TRUE(support::sameBits(powerOf(inputs[which]), expected[which])) << which;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
}
