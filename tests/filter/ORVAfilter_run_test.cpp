// The results of both structures, bit by bit, against their recursions written out.
#include "filter/ORVAfilter_reference.h"
#include "support/bits.h"

#include <orva/ORVAfilter.h>

#include <thread>

using support::Random;
using support::sameBits;

namespace
{

// Where a run takes place: in one array, so that input and output may overlap.
struct Run {
    size_t input;
    size_t output;
    uint32_t numSamples;
    uint32_t offset;
    uint32_t stride;
};

// Runs filter and reference over the same array and compares all of it.
testing::AssertionResult sameRun(Pair &pair, const std::vector<float> &array, const Run &run)
{
    auto actual = array;
    auto expected = array;
    const int32_t result = ORVA_FilterEx(pair.filter.get(), actual.data() + run.input,
                                         actual.data() + run.output, run.numSamples, run.offset, run.stride);
    pair.reference->run(expected.data() + run.input, expected.data() + run.output, run.numSamples, run.offset,
                        run.stride);
    const auto same = sameBits(actual, expected);
    if (result == 1 && same)
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << pair.name << ", input at " << run.input << ", output at " << run.output << ", numSamples "
           << run.numSamples << ", offset " << run.offset << ", stride " << run.stride << ": result "
           << result << ", " << same.message();
}

} // namespace

TEST(DirectForm, EveryPairOfOrdersGivesTheBitsOfTheRecursion)
{
    Random random;
    for (size_t numOrder = 0; numOrder <= 12; ++numOrder)
        for (size_t denOrder = 0; denOrder <= 12; ++denOrder)
            for (size_t channels = 1; channels <= 9; ++channels) {
                Pair pair = directPair(random, channels, numOrder, denOrder);
                const auto length = static_cast<uint32_t>(channels * 30);
                const auto array = randomSamples(random, 2 * length);
                ASSERT_TRUE(sameRun(pair, array, {0, length, length, 0, static_cast<uint32_t>(channels)}));
            }
}

TEST(Biquads, EverySectionCountGivesTheBitsOfTheRecursion)
{
    Random random;
    for (size_t sections = 0; sections <= 12; ++sections)
        for (size_t channels = 1; channels <= 9; ++channels)
            for (int repeat = 0; repeat < 5; ++repeat) {
                Pair pair = biquadPair(random, channels, sections);
                const auto length = static_cast<uint32_t>(channels * 30);
                const auto array = randomSamples(random, 2 * length);
                ASSERT_TRUE(sameRun(pair, array, {0, length, length, 0, static_cast<uint32_t>(channels)}));
            }
}

TEST(FilterRun, EveryOffsetAndStrideGivesTheBitsOfTheRecursion)
{
    Random random;
    for (uint32_t channels = 1; channels <= 9; ++channels)
        for (uint32_t offset = 0; offset <= 2 * channels; ++offset)
            for (uint32_t stride = 1; stride <= 2 * channels; ++stride) {
                Pair pair = anyPair(random, channels);
                const auto length = static_cast<uint32_t>(random.integer(1, 6 * channels));
                const auto array = randomSamples(random, 2 * length);
                ASSERT_TRUE(sameRun(pair, array, {0, length, length, offset, stride}));
                ASSERT_TRUE(sameRun(pair, array, {0, 0, length, offset, stride})) << "in place";
            }
}

TEST(FilterRun, OverlappingBuffersGiveWhatFrameAfterFrameGives)
{
    Random random;
    for (uint32_t channels = 1; channels <= 9; ++channels)
        for (uint32_t shift = 0; shift <= 2 * channels + 1; ++shift)
            for (uint32_t stride = 1; stride <= 2 * channels; ++stride)
                for (const bool outputFirst : {false, true}) {
                    Pair pair = anyPair(random, channels);
                    const uint32_t length = 5 * channels;
                    const auto array = randomSamples(random, length + shift);
                    const size_t input = outputFirst ? shift : 0;
                    ASSERT_TRUE(sameRun(pair, array, {input, shift - input, length, 0, stride}));
                }
}

TEST(FilterRun, AnyCutOfTheBlockGivesTheSameBits)
{
    Random random;
    for (int repeat = 0; repeat < 200; ++repeat) {
        const auto channels = static_cast<uint32_t>(random.integer(1, 9));
        const auto stride = channels + static_cast<uint32_t>(random.integer(0, channels));
        const uint32_t frames = 60;
        Pair pair = anyPair(random, channels);
        const auto input = randomSamples(random, frames * stride);
        std::vector<float> output(input.size(), 0.5f);
        auto expected = output;
        pair.reference->run(input.data(), expected.data(), frames * stride, 0, stride);
        for (uint32_t frame = 0; frame < frames;) {
            const auto cut = std::min(static_cast<uint32_t>(random.integer(0, 20)), frames - frame);
            ASSERT_EQ(ORVA_FilterEx(pair.filter.get(), input.data() + frame * stride,
                                    output.data() + frame * stride, cut * stride, 0, stride),
                      1);
            frame += cut;
        }
        ASSERT_TRUE(sameBits(output, expected)) << pair.name << ", stride " << stride;
    }
}

TEST(FilterRun, FilterIsFilterExOverTheWholeBuffer)
{
    Random random;
    for (uint32_t channels = 1; channels <= 9; ++channels)
        for (uint32_t length = 0; length <= 4 * channels; ++length) {
            Pair pair = anyPair(random, channels);
            const auto input = randomSamples(random, length);
            std::vector<float> output(length, 0.5f);
            auto expected = output;
            pair.reference->run(input.data(), expected.data(), length, 0, channels);
            const float nothing = 0.0f;
            float untouched = 0.5f;
            ASSERT_EQ(ORVA_Filter(pair.filter.get(), length > 0 ? input.data() : &nothing,
                                  length > 0 ? output.data() : &untouched, length),
                      1);
            ASSERT_TRUE(sameBits(output, expected)) << pair.name << ", numSamples " << length;
            ASSERT_EQ(untouched, 0.5f);
        }
}

TEST(FilterRun, MemoriesHoldOddValuesUntilAReset)
{
    Random random;
    for (int repeat = 0; repeat < 100; ++repeat) {
        const auto channels = static_cast<uint32_t>(random.integer(1, 9));
        Pair pair = anyPair(random, channels);
        for (int block = 0; block < 4; ++block) {
            const auto array = randomSamples(random, size_t{channels} * 12);
            ASSERT_TRUE(sameRun(pair, array, {0, 0, channels * 12, 0, channels})) << "block " << block;
        }
    }

    const Filter integrator = fromCoefs(1, {1.0}, {1.0, -1.0});
    float x[] = {__builtin_inff(), 1.0f, -__builtin_inff(), 1.0f};
    ASSERT_EQ(ORVA_Filter(integrator.get(), x, x, 4), 1);
    EXPECT_EQ(x[1], __builtin_inff());
    EXPECT_TRUE(std::isnan(x[3]));
    EXPECT_EQ(ORVA_ResetFilter(integrator.get()), 1);
    float after[] = {1.0f, 2.0f, 3.0f};
    ASSERT_EQ(ORVA_Filter(integrator.get(), after, after, 3), 1);
    EXPECT_TRUE(sameBits<float>(after, std::vector<float>{1.0f, 3.0f, 6.0f}));
}

TEST(DirectForm, ImpulseGivesTheNormalisedCoefficients)
{
    // (2 + 4 z^-1) / (2 + z^-1) is (1 + 2 z^-1) / (1 + 0.5 z^-1): 1, then 1.5 times powers of -0.5.
    const Filter filter = fromCoefs(1, {2.0, 4.0}, {2.0, 1.0});
    std::vector<float> x = {1.0f, 0.0f, 0.0f, 0.0f, 0.0f};
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), x.data(), 5), 1);
    EXPECT_TRUE(sameBits(x, {1.0f, 1.5f, -0.75f, 0.375f, -0.1875f}));
}

TEST(DirectForm, OrderZeroIsAGain)
{
    const Filter filter = fromCoefs(2, {3.0}, {2.0});
    std::vector<float> x = {1.0f, -2.0f, 0.25f, 1000.0f};
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), x.data(), 4), 1);
    EXPECT_TRUE(sameBits(x, {1.5f, -3.0f, 0.375f, 1500.0f}));
}

TEST(DirectForm, WithoutDenominatorTapsItIsAFirFilter)
{
    const Filter filter = fromCoefs(1, {1.0, 2.0, 3.0}, {1.0});
    std::vector<float> x = {1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 1.0f};
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), x.data(), 6), 1);
    EXPECT_TRUE(sameBits(x, {1.0f, 2.0f, 3.0f, 0.0f, 1.0f, 3.0f}));
}

TEST(DirectForm, WithoutNumeratorTapsItIsAllPole)
{
    const Filter filter = fromCoefs(1, {4.0}, {2.0, 0.0, -1.0});
    std::vector<float> x = {1.0f, 0.0f, 0.0f, 0.0f, 0.0f};
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), x.data(), 5), 1);
    EXPECT_TRUE(sameBits(x, {2.0f, 0.0f, 1.0f, 0.0f, 0.5f}));
}

TEST(DirectForm, TheTermOfTheCurrentFrameIsAddedLast)
{
    // In float, (1e8 - 1e8) + 1 is 1, and (1 + 1e8) - 1e8 would be 0.
    const Filter filter = fromCoefs(1, {1.0, 1.0, 1.0}, {1.0});
    std::vector<float> x = {-1e8f, 1e8f, 1.0f};
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), x.data(), 3), 1);
    EXPECT_EQ(x[2], 1.0f);
}

TEST(Biquads, ASectionRunsInDoubleAndPassesOnAFloat)
{
    // 1 + 2^-30 is no float. Between sections the 2^-30 is lost; inside one, the difference of two terms
    // keeps it.
    const double fine = 1.0 + 0x1p-30;
    const Filter cascade = fromRecords(1, {0.0, 0.0, fine, 0.0, 0.0, 0.0, 0.0, 1.0, -1.0, 0.0});
    std::vector<float> x = {1.0f, 0.0f};
    ASSERT_EQ(ORVA_Filter(cascade.get(), x.data(), x.data(), 2), 1);
    EXPECT_TRUE(sameBits(x, {1.0f, -1.0f}));

    const Filter difference = fromRecords(1, {0.0, 0.0, fine, -1.0, 0.0});
    std::vector<float> constant = {1.0f, 1.0f};
    ASSERT_EQ(ORVA_Filter(difference.get(), constant.data(), constant.data(), 2), 1);
    EXPECT_TRUE(sameBits(constant, {1.0f, 0x1p-30f}));
}

TEST(Biquads, TheSumsAreTakenFromTheLeft)
{
    // In double, (1 + 2^60) - 2^60 is 0, and 1 + (2^60 - 2^60) would be 1.
    const Filter output = fromRecords(1, {0.0, 0.0, 1.0, 0x1p60, -0x1p60});
    std::vector<float> x = {1.0f, 1.0f, 1.0f};
    ASSERT_EQ(ORVA_Filter(output.get(), x.data(), x.data(), 3), 1);
    EXPECT_EQ(x[2], 0.0f);

    // w: 1, then 2^60, then (1 - 2^60) + 2^60.
    const Filter recursion = fromRecords(1, {1.0, -0x1p60, 1.0, 0.0, 0.0});
    x = {1.0f, 0x1p60f, 1.0f};
    ASSERT_EQ(ORVA_Filter(recursion.get(), x.data(), x.data(), 3), 1);
    EXPECT_EQ(x[1], 0x1p60f);
    EXPECT_EQ(x[2], 0.0f);
}

TEST(Biquads, SectionZeroActsFirst)
{
    // 1e30 times 1e30 overflows a float between the sections; 1e30 times 1e-30 does not.
    const Filter downFirst = fromRecords(1, {0, 0, 1e-30, 0, 0, 0, 0, 1e30, 0, 0});
    const Filter upFirst = fromRecords(1, {0, 0, 1e30, 0, 0, 0, 0, 1e-30, 0, 0});
    float x = 1e30f;
    float y = 0.0f;
    ASSERT_EQ(ORVA_Filter(downFirst.get(), &x, &y, 1), 1);
    EXPECT_NEAR(y, 1e30f, 1e25f);
    ASSERT_EQ(ORVA_Filter(upFirst.get(), &x, &y, 1), 1);
    EXPECT_EQ(y, __builtin_inff());
}

TEST(Biquads, TheLeadingCoefficientsAreSubtracted)
{
    // y[n] = x[n] + 0.5 y[n-1] + 0.25 y[n-2]
    const Filter filter = fromRecords(1, {-0.5, -0.25, 1.0, 0.0, 0.0});
    std::vector<float> x = {1.0f, 0.0f, 0.0f, 0.0f};
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), x.data(), 4), 1);
    EXPECT_TRUE(sameBits(x, {1.0f, 0.5f, 0.5f, 0.375f}));
}

TEST(Biquads, WithoutSectionsTheInputIsCopied)
{
    Random random;
    const Filter filter = fromRecords(2, {});
    std::vector<float> x(64);
    for (float &value : x)
        value = random.anyFloat();
    std::vector<float> y(64);
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), y.data(), 64), 1);
    EXPECT_TRUE(sameBits(y, x));
}

TEST(FilterRun, OneChannelOfAnInterleavedBufferLeavesTheOthersAlone)
{
    Random random;
    Pair mono = anyPair(random, 1);
    const auto input = random.noise(6 * 50);
    std::vector<float> output(input.size(), 0.5f);
    std::vector<float> channel(50), filtered(50);
    for (size_t frame = 0; frame < 50; ++frame)
        channel[frame] = input[6 * frame + 4];
    mono.reference->run(channel.data(), filtered.data(), 50, 0, 1);
    ASSERT_EQ(ORVA_FilterEx(mono.filter.get(), input.data(), output.data(), 6 * 50, 4, 6), 1);
    for (size_t i = 0; i < output.size(); ++i)
        ASSERT_EQ(output[i], i % 6 == 4 ? filtered[i / 6] : 0.5f) << mono.name << ", at " << i;
}

TEST(FilterRun, FiltersOnDifferentThreadsDoNotMeet)
{
    Random random;
    const auto input = random.noise(20000);
    std::vector<Pair> pairs;
    for (size_t channels = 1; channels <= 2; ++channels) {
        pairs.push_back(directPair(random, channels, 4, 4));
        pairs.push_back(biquadPair(random, channels, 3));
    }
    std::vector<std::vector<float>> outputs(pairs.size(), std::vector<float>(input.size()));
    std::vector<std::thread> threads;
    for (size_t p = 0; p < pairs.size(); ++p)
        threads.emplace_back([&, p] {
            ORVA_Filter(pairs[p].filter.get(), input.data(), outputs[p].data(),
                        static_cast<uint32_t>(input.size()));
        });
    for (auto &thread : threads)
        thread.join();
    for (size_t p = 0; p < pairs.size(); ++p) {
        std::vector<float> expected(input.size());
        pairs[p].reference->run(input.data(), expected.data(), static_cast<int64_t>(input.size()), 0,
                                static_cast<int64_t>(pairs[p].reference->channels));
        EXPECT_TRUE(sameBits(outputs[p], expected)) << pairs[p].name;
    }
}
