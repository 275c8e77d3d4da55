// The stream through the zero-order hold, bit for bit, and the pairs that it has.
#include "ORVAresample_reference.h"
#include "resample/ORVAresample_filterset.h"
#include "resample/ORVAresample_handle.h"
#include "resample/ORVAresample_hold.h"
#include "support/bits.h"
#include "support/log.h"
#include "support/random.h"

#include <kett/KTsettings.h>

#include <limits>

using namespace orva;

namespace
{

using support::sameBits;

constexpr size_t reachable = 28;

std::span<const double> denominator(const FilterSetRow &row)
{
    return {row.denominator, static_cast<size_t>(row.count)};
}

std::span<const double> numerator(const FilterSetRow &row)
{
    return {row.numerator, static_cast<size_t>(row.count)};
}

// Up and down.
std::vector<Rates> bothWays(const FilterSetRow &row)
{
    return {{row.rateLow, row.rateHigh}, {row.rateHigh, row.rateLow}};
}

Floats converted(Rates rates, const Floats &input, const std::vector<size_t> &cuts)
{
    return convertInBlocks(newResampler(rates, "type=zoh").get(), rates, input, cuts);
}

const ZohResampler &recordOf(const Resampler &resampler)
{
    return *static_cast<const ZohResampler *>(resampler->impl);
}

support::Message unsupported(Rates rates)
{
    return support::terminalError("ORVA_ZOHResampleInit: Unsuported sample rate convertion: " +
                                  std::to_string(rates.input) + " to " + std::to_string(rates.output));
}

} // namespace

TEST(HoldStream, EveryPairGivesTheBitsOfThePlainLoop)
{
    support::Random random;
    const auto input = random.noise(1000);
    for (size_t i = 0; i < reachable; ++i)
        for (const Rates rates : bothWays(FilterSet[i])) {
            PlainHold plain(rates, denominator(FilterSet[i]), numerator(FilterSet[i]));
            const Floats output = converted(rates, input, {0, 1, 300, 2, 64});
            EXPECT_EQ(std::ssize(output), lengthAfter(1000, rates)) << rates;
            EXPECT_TRUE(sameBits(output, plain.run(input))) << rates;
        }
}

TEST(HoldStream, AnyCutOfTheStreamGivesTheSameBits)
{
    support::Random random;
    const auto input = random.noise(500);
    for (const Rates rates : {Rates{44100, 48000}, {48000, 44100}, {8000, 96000}, {96000, 8000}}) {
        const Floats whole = converted(rates, input, {500});
        for (const auto &cuts : {std::vector<size_t>{1}, {7}, {64}, {0, 1, 300, 2}})
            EXPECT_TRUE(sameBits(converted(rates, input, cuts), whole))
                << rates << ", " << testing::PrintToString(cuts);
    }
}

TEST(HoldStream, InfinitiesAndNotANumberPassAsThroughThePlainLoop)
{
    support::Random random;
    for (size_t i = 0; i < reachable; ++i)
        for (const Rates rates : bothWays(FilterSet[i])) {
            PlainHold plain(rates, denominator(FilterSet[i]), numerator(FilterSet[i]));
            Floats input = random.noise(50);
            for (size_t at = 20; at < 50; ++at)
                input[at] = random.anyFloat();
            EXPECT_TRUE(sameBits(converted(rates, input, {50}), plain.run(input))) << rates;
        }
}

TEST(HoldStream, MayBeConvertedInPlace)
{
    for (const Rates rates : {Rates{44100, 48000}, {48000, 44100}, {8000, 96000}, {96000, 8000}})
        EXPECT_TRUE(sameInPlace(rates, "type=zoh")) << rates;
}

TEST(HoldStream, OrderDelayCompensationAndTheSettingAreNotLookedAt)
{
    support::Log log;
    support::Random random;
    const auto input = random.noise(300);
    for (const Rates rates : {Rates{44100, 48000}, {48000, 44100}}) {
        const Floats expected = converted(rates, input, {300});
        KTSETTINGS_SetEx(nullptr, "liborva.resample.polyphase.order=%d", 0);
        for (const char *config : {"type=zoh", "type=zoh; order=3", "type=zoh; order=0; delaycompensation=0",
                                   "type=zoh; delaycompensation=1"})
            EXPECT_TRUE(sameBits(convert(newResampler(rates, config).get(), input, 600), expected))
                << rates << ", " << config;
        KTSETTINGS_UnsetEx(nullptr, "liborva.resample.polyphase.order");
    }
    EXPECT_TRUE(log.messages.empty());
}

TEST(HoldStream, DoublingGivesExactlyTwoOutputsForEachInput)
{
    const auto resampler = newResampler({48000, 96000}, "type=zoh");
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(convert(resampler.get(), Floats{0.5f}, 4).size(), 2u) << i;
}

// The filter of 96000 to 48000 runs before the dropping: what is kept are the even ones of its outputs.
TEST(HoldStream, HalvingKeepsTheEvenSamplesAfterTheFilter)
{
    support::Random random;
    const auto input = random.noise(101);
    const auto &row = FilterSet[7];
    ASSERT_EQ(row.rateHigh, 96000);
    PlainHold every({96000, 96000}, denominator(row), numerator(row));
    const Floats filtered = every.run(input), output = converted({96000, 48000}, input, {10});
    ASSERT_EQ(output.size(), 51u);
    for (size_t i = 0; i < output.size(); ++i)
        EXPECT_EQ(output[i], filtered[2 * i]) << i;
}

TEST(HoldRecord, HoldsTheRowOfItsPairBothWays)
{
    for (size_t i = 0; i < reachable; ++i)
        for (const Rates rates : bothWays(FilterSet[i])) {
            const auto resampler = newResampler(rates, "type=zoh");
            EXPECT_EQ(resampler->mode, 1);
            const ZohResampler &record = recordOf(resampler);
            const int32_t common = std::gcd(rates.input, rates.output);
            EXPECT_EQ(record.upFactor, rates.output / common);
            EXPECT_EQ(record.downFactor, rates.input / common);
            EXPECT_EQ(record.phase, 0u);
            EXPECT_EQ(record.inputCount, 0u);
            EXPECT_EQ(record.work, nullptr);
            EXPECT_EQ(record.workCapacity, 0);
            EXPECT_EQ(record.outputsPerInput, rates.output / rates.input + 1) << rates;
            EXPECT_EQ(record.coefficientCount, FilterSet[i].count);
            EXPECT_EQ(record.upsampling, rates.input < rates.output ? 1 : 0);
            EXPECT_EQ(record.stateB, record.stateA + record.coefficientCount + 1);
            for (int32_t k = 0; k < 2 * record.coefficientCount + 2; ++k)
                EXPECT_EQ(record.stateA[k], 0.0);
            EXPECT_EQ(record.denominator, FilterSet[i].denominator) << rates;
            EXPECT_EQ(record.numerator, FilterSet[i].numerator) << rates;
        }
}

TEST(HoldRecord, OneRowServesUpAndDown)
{
    const auto up = newResampler({8000, 16000}, "type=zoh"), down = newResampler({16000, 8000}, "type=zoh");
    EXPECT_EQ(recordOf(up).denominator, recordOf(down).denominator);
    EXPECT_EQ(recordOf(up).upsampling, 1);
    EXPECT_EQ(recordOf(down).upsampling, 0);
}

TEST(HoldRecord, CountsInputsAndGrowsItsWorkOnly)
{
    const auto resampler = newResampler({8000, 48000}, "type=zoh");
    const ZohResampler &record = recordOf(resampler);
    uint32_t inputs = 0;
    int32_t longest = 0;
    for (const int32_t count : {5, 1, 0, 9, 3}) {
        convert(resampler.get(), Floats(static_cast<size_t>(count), 1.0f), 54);
        inputs += static_cast<uint32_t>(count);
        longest = std::max(longest, count);
        EXPECT_EQ(record.inputCount, inputs);
        EXPECT_EQ(record.workCapacity, 7 * longest); // 6 / 1 + 1 an input
    }
}

TEST(HoldPairs, AnUnknownPairIsReportedAndGivesZeros)
{
    constexpr int32_t most = std::numeric_limits<int32_t>::max(); // phases up to twice that
    for (const Rates rates : {Rates{48000, 48000},
                              {44100, 48001},
                              {8000, 44099},
                              {48000, 7999},
                              {3, 2},
                              {most, most - 1},
                              {most - 1, most}}) {
        support::Log log;
        const auto resampler = newResampler(rates, "type=zoh");
        ASSERT_NE(resampler, nullptr);
        EXPECT_EQ(log.messages, std::vector{unsupported(rates)});
        EXPECT_EQ(recordOf(resampler).coefficientCount, 0);
        EXPECT_EQ(recordOf(resampler).denominator, nullptr);
        EXPECT_EQ(recordOf(resampler).numerator, nullptr);
        EXPECT_EQ(recordOf(resampler).upsampling, rates.input <= rates.output ? 1 : 0) << rates;
        EXPECT_EQ(recordOf(resampler).outputsPerInput, rates.output / rates.input + 1) << rates;
        EXPECT_EQ(recordOf(resampler).stateB, recordOf(resampler).stateA + 1);
        const Floats output = convertInBlocks(resampler.get(), rates, Floats(100, 1.0f), {30});
        EXPECT_TRUE(sameBits(output, Floats(static_cast<size_t>(lengthAfter(100, rates)), 0.0f))) << rates;
        EXPECT_EQ(ORVA_ResampleFlushBufferSize(resampler.get()), 0);
        EXPECT_EQ(log.messages.size(), 1u);
    }
}

TEST(HoldPairs, MoreOutputsToAnInputThanCanBeCountedAreRefused)
{
    support::Log log;
    const Rates most{1, std::numeric_limits<int32_t>::max()}, fewer{2, most.output};
    EXPECT_EQ(newResampler(most, "type=zoh"), nullptr);
    EXPECT_EQ(log.messages,
              (std::vector{unsupported(most), support::error("ORVA_ResampleInit: Parametros invalidos")}));
    log.messages.clear();
    const auto resampler = newResampler(fewer, "type=zoh");
    ASSERT_NE(resampler, nullptr);
    EXPECT_EQ(log.messages, std::vector{unsupported(fewer)});
    EXPECT_EQ(recordOf(resampler).outputsPerInput, 1 << 30);
}

TEST(HoldPairs, ABlockWithMoreResultsThanCanBeCountedIsRefused)
{
    const auto resampler = newResampler({8000, 96000}, "type=zoh");
    support::Log log;
    const float input = 1.0f;
    float output = unwritten;
    const int32_t count = std::numeric_limits<int32_t>::max() / 13 + 1; // 13 an input
    EXPECT_EQ(ORVA_Resample(resampler.get(), &input, &output, count), -1);
    EXPECT_EQ(output, unwritten);
    EXPECT_EQ(log.messages, std::vector{support::error("ORVA_ResampleInit: Parametros invalidos")});
    EXPECT_EQ(recordOf(resampler).inputCount, 0u);
    EXPECT_EQ(recordOf(resampler).workCapacity, 0);
}

TEST(HoldFlush, GivesNothingAndChangesNothing)
{
    support::Log log;
    support::Random random;
    const auto input = random.noise(200);
    const auto flushed = newResampler({48000, 44100}, "type=zoh");
    const auto not_flushed = newResampler({48000, 44100}, "type=zoh");
    for (int block = 0; block < 3; ++block) {
        EXPECT_EQ(ORVA_ResampleFlushBufferSize(flushed.get()), 0);
        for (const int32_t maxCount : {0, 1, -1, 1000})
            EXPECT_EQ(flush(flushed.get(), maxCount).size(), 0u);
        EXPECT_TRUE(sameBits(convert(flushed.get(), input, 200), convert(not_flushed.get(), input, 200)));
    }
    EXPECT_TRUE(log.messages.empty());
}
