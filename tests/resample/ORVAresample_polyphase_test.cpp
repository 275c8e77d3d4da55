// The stream through the polyphase converter, bit for bit.
#include "ORVAresample_reference.h"
#include "support/bits.h"
#include "support/log.h"
#include "support/random.h"

#include <chrono>
#include <ctime>
#include <limits>

namespace
{

using support::sameBits;

const Rates pairs[] = {
    {44100, 48000},
    {48000, 44100},
    {48000, 16000},
    {16000, 48000},
    {8000, 8000},
    {1, 1},
    {1, 2},
    {2, 1},
    {2, 3},
    {3, 2},
    {7, 5},
    {1, 13},
    {13, 1},
    {8000, 96000},
    {96000, 8000},
    {96000, 11025},
    {22050, 8000},
    {11025, 32000},
    {1000, 999},
    {999, 1000},
    {44100, 96000},
    {2147483647, 2147483647},
    {2000000000, 1000000000},
};

std::string configOf(int32_t order, bool compensates)
{
    return "order=" + std::to_string(order) + "; delaycompensation=" + std::to_string(compensates);
}

// A converter and its reference side by side.
struct Both {
    Both(Rates r, int32_t order, bool compensates)
        : rates(r), resampler(newResampler(r, configOf(order, compensates))), plain(r, order, compensates)
    {
    }

    testing::AssertionResult sameAfter(std::span<const float> input)
    {
        const auto room = static_cast<size_t>(lengthAfter(std::ssize(input), rates)) + 1;
        return sameBits(convert(resampler.get(), input, room), plain.run(input));
    }

    testing::AssertionResult sameAfterFlush(int32_t maxCount)
    {
        const auto flushed = flush(resampler.get(), maxCount);
        const auto expected = plain.flush(maxCount);
        if (const int32_t left = ORVA_ResampleFlushBufferSize(resampler.get()); left != plain.delay)
            return testing::AssertionFailure() << left << " left instead of " << plain.delay;
        return sameBits(flushed, expected);
    }

    Rates rates;
    Resampler resampler;
    PlainPolyphase plain;
};

// Blocks of 0, 1 and any number of samples, then flushes: whole, in part, more than there is, and again.
void compareStream(support::Random &random, Rates rates, int32_t order, bool compensates)
{
    SCOPED_TRACE(testing::Message() << rates << ", order " << order << ", compensates " << compensates);
    Both both(rates, order, compensates);
    ASSERT_NE(both.resampler, nullptr);
    const auto input = random.noise(static_cast<size_t>(random.integer(0, 3 * both.plain.taps + 60)));
    for (size_t start = 0, count = 0; start < input.size(); start += count) {
        const int64_t longest = std::min<int64_t>(std::ssize(input), random.integer(0, 3) * 40);
        count = std::min(input.size() - start, static_cast<size_t>(random.integer(0, 1 + longest)));
        ASSERT_TRUE(both.sameAfter(std::span(input).subspan(start, count)));
    }
    const int32_t delay = both.plain.delay;
    ASSERT_EQ(ORVA_ResampleFlushBufferSize(both.resampler.get()), delay);
    const int64_t flushes[] = {0,
                               -1,
                               1,
                               delay,
                               delay + 1,
                               random.integer(1, delay),
                               std::numeric_limits<int32_t>::max(),
                               std::numeric_limits<int32_t>::min()};
    for (int again = 0; again < 3; ++again)
        ASSERT_TRUE(both.sameAfterFlush(static_cast<int32_t>(flushes[random.integer(0, 7)])));
}

Floats converted(Rates rates, const std::string &config, const Floats &input, const std::vector<size_t> &cuts)
{
    const auto resampler = newResampler(rates, config);
    Floats output = convertInBlocks(resampler.get(), rates, input, cuts);
    const Floats tail = flush(resampler.get(), 0);
    output.insert(output.end(), tail.begin(), tail.end());
    return output;
}

// Windows has a clock of the processor's time only in steps longer than what is measured here.
double seconds()
{
#ifdef _WIN32
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
#else
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
#endif
}

// The time per output and tap: of the outputs of a block, and of those of the whole flush after it. The least of many, since
// nothing but disturbance makes one longer.
struct Cost {
    double block;
    double flush;
};

Cost costAtOrder(int32_t order, float newest)
{
    support::Random random;
    Floats input = random.noise(static_cast<size_t>(3 * order));
    input.back() = newest;
    Floats block(input.size() + 1), tail(static_cast<size_t>(order));
    Cost least{1e9, 1e9};
    for (int repetition = 0; repetition < 40; ++repetition) {
        const auto resampler = newResampler({48000, 48000}, "order=" + std::to_string(order));
        const double start = seconds();
        const int32_t written =
            ORVA_Resample(resampler.get(), input.data(), block.data(), static_cast<int32_t>(input.size()));
        const double middle = seconds();
        EXPECT_EQ(ORVA_ResampleFlushBuffersEx(resampler.get(), tail.data(), 0), order);
        const double end = seconds();
        const double taps = 2.0 * order + 1.0;
        least.block = std::min(least.block, (middle - start) / (written * taps));
        least.flush = std::min(least.flush, (end - middle) / (order * taps));
    }
    return least;
}

} // namespace

TEST(PolyphaseStream, EveryPairGivesTheBitsOfThePlainSums)
{
    support::Random random;
    for (const Rates rates : pairs)
        for (const int32_t order : {1, 3, 10})
            for (const bool compensates : {true, false})
                compareStream(random, rates, order, compensates);
}

TEST(PolyphaseStream, EveryOrderUpTo64GivesTheBitsOfThePlainSums)
{
    support::Random random;
    for (int32_t order = 1; order <= 64; ++order)
        for (size_t i = 0; i < 2; ++i)
            compareStream(random, pairs[(static_cast<size_t>(order) + 11 * i) % 10], order, i == 0);
}

TEST(PolyphaseStream, RandomPairsGiveTheBitsOfThePlainSums)
{
    support::Random random;
    for (int i = 0; i < 60; ++i) {
        const Rates rates{static_cast<int32_t>(random.integer(1, 60)),
                          static_cast<int32_t>(random.integer(1, 60))};
        compareStream(random, rates, static_cast<int32_t>(random.integer(1, 8)), i % 2 == 0);
    }
}

TEST(PolyphaseStream, AnyCutOfTheStreamGivesTheSameBits)
{
    support::Random random;
    const auto input = random.noise(1500);
    for (const Rates rates : pairs) {
        const Floats whole = converted(rates, "order=4", input, {1500});
        for (const auto &cuts : {std::vector<size_t>{1}, {7}, {64}, {0, 1, 1000, 2}, {1024, 3}})
            EXPECT_TRUE(sameBits(converted(rates, "order=4", input, cuts), whole))
                << rates << ", " << testing::PrintToString(cuts);
    }
}

TEST(PolyphaseStream, InfinitiesAndNotANumberPassAsThroughThePlainSums)
{
    support::Random random;
    for (const Rates rates : {Rates{2, 3}, {3, 2}, {44100, 48000}, {5, 1}}) {
        Both both(rates, 3, true);
        for (int block = 0; block < 40; ++block) {
            Floats input = random.noise(20);
            if (block % 4 == 0)
                input[static_cast<size_t>(random.integer(0, 19))] =
                    std::numeric_limits<float>::infinity() * static_cast<float>(random.integer(0, 1) * 2 - 1);
            if (block % 7 == 0)
                for (float &x : input)
                    x = random.anyFloat();
            ASSERT_TRUE(both.sameAfter(input)) << rates << ", block " << block;
        }
        ASSERT_TRUE(both.sameAfterFlush(0)) << rates;
    }
}

TEST(PolyphaseStream, NotANumberIsGoneAfterAsManySamplesAsAPhaseIsLong)
{
    for (const Rates rates : {Rates{2, 3}, {3, 2}, {44100, 48000}, {8000, 8000}}) {
        const auto resampler = newResampler(rates, "order=5");
        const auto taps = static_cast<size_t>(PlainPolyphase(rates, 5, true).taps);
        Floats input(4 * taps, 0.0f);
        input[taps] = std::numeric_limits<float>::quiet_NaN();
        const Floats output =
            convert(resampler.get(), input, static_cast<size_t>(lengthAfter(std::ssize(input), rates)));
        EXPECT_TRUE(std::any_of(output.begin(), output.end(), [](float x) { return std::isnan(x); }));
        const Floats after = convert(resampler.get(), Floats(8, 0.0f), 20);
        EXPECT_TRUE(std::all_of(after.begin(), after.end(), [](float x) { return x == 0.0f; })) << rates;
    }
}

TEST(PolyphaseStream, MayBeConvertedInPlace)
{
    for (const Rates rates : {Rates{44100, 48000}, {48000, 44100}, {1, 5}, {5, 1}, {1, 1}})
        EXPECT_TRUE(sameInPlace(rates, "order=2")) << rates;
}

TEST(PolyphaseLength, FollowsTheFormulaOfTheHeader)
{
    for (const Rates rates : pairs)
        for (const bool compensates : {true, false})
            for (const int64_t n : {0, 1, 2, 17, 400}) {
                const auto resampler = newResampler(rates, configOf(2, compensates));
                const int64_t delay = ORVA_ResampleFlushBufferSize(resampler.get());
                const Floats input(static_cast<size_t>(n), 0.5f);
                const int64_t all = lengthAfter(n, rates), dropped = compensates ? std::min(all, delay) : 0;
                const Floats output = convertInBlocks(resampler.get(), rates, input, {30});
                EXPECT_EQ(std::ssize(output), all - dropped) << rates << ", " << n;
                const Floats tail = flush(resampler.get(), 0);
                EXPECT_EQ(std::ssize(tail), delay) << rates << ", " << n;
                if (compensates) {
                    EXPECT_EQ(std::ssize(output) + std::ssize(tail), std::max(all, delay));
                }
            }
}

TEST(PolyphaseLength, AFlushToTheLengthOfTheInputEndsThere)
{
    for (const Rates rates : pairs)
        for (const int64_t n : {1, 2, 17, 400}) {
            const auto resampler = newResampler(rates, "order=2");
            const Floats output =
                convertInBlocks(resampler.get(), rates, Floats(static_cast<size_t>(n), 0.5f), {30});
            const int64_t rest = lengthAfter(n, rates) - std::ssize(output);
            ASSERT_GT(rest, 0) << rates;
            EXPECT_EQ(std::ssize(flush(resampler.get(), static_cast<int32_t>(rest))), rest) << rates;
        }
}

TEST(PolyphaseLength, WithoutCompensationTheFrontIsLongerByTheDelay)
{
    support::Random random;
    const auto input = random.noise(700);
    for (const Rates rates : {Rates{44100, 48000}, {48000, 16000}, {3, 2}}) {
        const auto delay =
            static_cast<size_t>(ORVA_ResampleFlushBufferSize(newResampler(rates, "order=4").get()));
        const Floats with = converted(rates, "order=4", input, {700});
        Floats without = converted(rates, "order=4; delaycompensation=0", input, {700});
        ASSERT_EQ(without.size(), with.size() + delay) << rates;
        without.erase(without.begin(), without.begin() + static_cast<std::ptrdiff_t>(delay));
        EXPECT_TRUE(sameBits(without, with)) << rates;
    }
}

TEST(PolyphaseFlush, WholeFlushTakesTheSizeToZeroAndLeavesNothing)
{
    const auto resampler = newResampler({44100, 48000}, "order=30");
    EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), 33);
    EXPECT_EQ(flush(resampler.get(), 0).size(), 33u);
    EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), 0);
    EXPECT_EQ(flush(resampler.get(), 0).size(), 0u);
    EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), 0);
}

TEST(PolyphaseFlush, PartialFlushIsFinal)
{
    const auto resampler = newResampler({44100, 48000}, "order=30");
    EXPECT_EQ(flush(resampler.get(), 5).size(), 5u);
    EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), 28);
    for (const int32_t more : {0, 1, 28, -1}) {
        EXPECT_EQ(flush(resampler.get(), more).size(), 0u);
        EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), 28);
    }
}

TEST(PolyphaseFlush, AShortStreamComesOutOfTheFlushAlone)
{
    const Rates rates{1, 2};
    const Floats input = {1.0f, -0.5f, 0.25f};
    Both both(rates, 8, true);
    ASSERT_EQ(both.plain.delay, 16);
    EXPECT_EQ(convert(both.resampler.get(), input, 7).size(), 0u);
    EXPECT_EQ(both.plain.run(input).size(), 0u);
    EXPECT_EQ(both.plain.toSkip, 10);
    EXPECT_TRUE(both.sameAfterFlush(6)); // ceil(3 L / M): what an example with compensation asks for
}

TEST(PolyphaseFlush, AFlushedConverterTakesNoMoreInput)
{
    support::Log log;
    const Floats input(100, 1.0f);
    for (const int32_t flushed : {1, 5, 0}) {
        const auto resampler = newResampler({3, 2}, "order=9");
        convert(resampler.get(), input, 67);
        const int32_t size = ORVA_ResampleFlushBufferSize(resampler.get());
        flush(resampler.get(), flushed);
        const int32_t left = ORVA_ResampleFlushBufferSize(resampler.get());
        EXPECT_EQ(left, flushed > 0 ? size - flushed : 0);
        float output = unwritten;
        EXPECT_EQ(ORVA_Resample(resampler.get(), input.data(), &output, 1), -1);
        EXPECT_EQ(ORVA_Resample(resampler.get(), input.data(), &output, 100), -1);
        EXPECT_EQ(ORVA_Resample(resampler.get(), input.data(), &output, 0), 0);
        EXPECT_EQ(output, unwritten);
        EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), left);
    }
    EXPECT_TRUE(log.messages.empty());
}

// There are as many outputs as the order says, each of as many rounded sums as there are taps.
TEST(PolyphaseFlush, AnOutputCostsAFewOrdinaryOnesAtAnyOrderAndAfterAnyInput)
{
    const Cost usual = costAtOrder(500, 0.5f);
    EXPECT_LT(usual.flush, 9.0 * usual.block);
    EXPECT_LT(costAtOrder(2000, 0.5f).flush, 3.0 * usual.flush);
    const Cost afterNaN = costAtOrder(500, std::numeric_limits<float>::quiet_NaN());
    EXPECT_LT(afterNaN.flush, 3.0 * usual.flush);
    EXPECT_LT(afterNaN.block, 3.0 * usual.block);
}

TEST(PolyphaseFlush, IsRoundedAtEveryTap)
{
    support::Random random;
    const auto input = random.noise(300);
    const auto flushing = newResampler({48000, 48000}, "order=20");
    const auto fed = newResampler({48000, 48000}, "order=20");
    EXPECT_TRUE(sameBits(convert(flushing.get(), input, 300), convert(fed.get(), input, 300)));
    const Floats tail = flush(flushing.get(), 0), silence = convert(fed.get(), Floats(20, 0.0f), 20);
    EXPECT_FALSE(sameBits(tail, silence));
    for (size_t i = 0; i < tail.size(); ++i)
        EXPECT_NEAR(tail[i], silence[i], 1e-5);
}

// An impulse through equal rates shows the prototype itself.
TEST(PolyphaseFilter, LowPassFiltersEqualRates)
{
    const auto resampler = newResampler({8000, 8000}, "order=7; delaycompensation=no");
    Floats impulse(20, 0.0f);
    impulse[0] = 1.0f;
    const Floats h = convert(resampler.get(), impulse, 20);
    ASSERT_EQ(h.size(), 20u);
    EXPECT_EQ(h[7], 0.95f);
    for (size_t i = 0; i < 7; ++i)
        EXPECT_EQ(h[i], h[14 - i]) << i;
    // h[6]: t = -1, sin(0.95 pi) / pi times the window at 6 of a period of 15
    constexpr double pi = 3.141592653589793;
    const double window = 0.42 - 0.5 * std::cos(12 * pi / 15) + 0.08 * std::cos(24 * pi / 15);
    EXPECT_NEAR(h[6], std::sin(0.95 * pi) / pi * window, 1e-8);
    for (size_t i = 15; i < 20; ++i)
        EXPECT_EQ(h[i], 0.0f);
}
