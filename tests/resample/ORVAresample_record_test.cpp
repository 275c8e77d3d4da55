// The polyphase record: what construction puts there, and what blocks and flushes make of it.
#include "ORVAresample_reference.h"
#include "resample/ORVAresample_handle.h"
#include "resample/ORVAresample_polyphase.h"
#include "support/bits.h"
#include "support/random.h"

using namespace orva;

namespace
{

using support::sameBits;

const PolyphaseResampler &recordOf(const Resampler &resampler)
{
    return *static_cast<const PolyphaseResampler *>(resampler->impl);
}

// What the bank holds for sample j steps older than the newest of an output in phase p.
double coefficientOf(const PolyphaseBank &bank, int32_t p, int32_t j)
{
    int64_t n = 0;
    while (n * bank.down % bank.up != p)
        ++n;
    BankPlace place = placeOf(bank, n);
    for (; j > 0; --j)
        goToOlderSample(bank, place);
    return *place.coefs;
}

// The sample j steps old.
double sampleOf(const PolyphaseResampler &record, int32_t j)
{
    return record.work[record.end - 1 - j];
}

} // namespace

TEST(PolyphaseRecord, HoldsTheWorkedNumbers)
{
    const struct {
        Rates rates;
        int32_t order, up, down, taps, delay;
    } cases[] = {
        {{44100, 48000}, 30, 160, 147, 61, 33}, // N = 9600, 9600 / 294 = 32.65
        {{48000, 44100}, 30, 147, 160, 66, 30},
        {{48000, 16000}, 30, 1, 3, 181, 30},
        {{16000, 48000}, 30, 3, 1, 61, 90},
        {{8000, 8000}, 30, 1, 1, 61, 30},
        {{2, 3}, 1, 3, 2, 3, 2}, // 6 / 4: a half goes away from zero
        {{2, 5}, 1, 5, 2, 3, 3},
        {{10, 15}, 3, 3, 2, 7, 5}, // 18 / 4
    };
    for (const auto &c : cases)
        for (const bool compensates : {true, false}) {
            const auto resampler = newResampler(c.rates, "order=" + std::to_string(c.order) +
                                                             (compensates ? "" : " delaycompensation=0"));
            EXPECT_EQ(resampler->mode, 0);
            const PolyphaseResampler &record = recordOf(resampler);
            EXPECT_EQ(record.upFactor, c.up) << c.rates;
            EXPECT_EQ(record.downFactor, c.down) << c.rates;
            EXPECT_EQ(record.tapsPerPhase, c.taps) << c.rates;
            EXPECT_EQ(record.delay, c.delay) << c.rates;
            EXPECT_EQ(record.delayToSkip, compensates ? c.delay : 0) << c.rates;
            EXPECT_EQ(record.phase, 0);
            EXPECT_GE(record.history, c.taps);
            for (int32_t j = 0; j < record.history; ++j)
                EXPECT_EQ(support::bitsOf(sampleOf(record, j)), 0u);
        }
}

TEST(PolyphaseRecord, TheDelayIsRoundedInSinglePrecision)
{
    EXPECT_EQ(polyphaseDelay(9600, 147), 33);
    EXPECT_EQ(polyphaseDelay(6, 2), 2);               // 1.5
    EXPECT_EQ(polyphaseDelay(33560998, 1000), 16781); // 16780.499; the float next to N is 33561000
}

TEST(PolyphaseRecord, PhasesAreThePrototypeSorted)
{
    for (const Rates rates : {Rates{44100, 48000},
                              {48000, 44100},
                              {48000, 16000},
                              {16000, 48000},
                              {1, 1},
                              {3, 2},
                              {2, 3},
                              {11025, 96000},
                              {7, 11}})
        for (const int32_t order : {1, 2, 7, 30, 64}) {
            const auto resampler = newResampler(rates, "order=" + std::to_string(order));
            const PolyphaseResampler &record = recordOf(resampler);
            const PlainPolyphase plain(rates, order, true);
            ASSERT_EQ(record.tapsPerPhase, plain.taps);
            ASSERT_EQ(record.bank.taps, plain.taps);
            for (int32_t p = 0; p < plain.L; ++p)
                for (int32_t j = 0; j < plain.taps; ++j)
                    ASSERT_TRUE(sameBits(coefficientOf(record.bank, p, j), plain.coefficient(p, j)))
                        << rates << ", order " << order << ", phase " << p << ", tap " << j;
        }
}

// The centre tap follows a rule of its own, with a quotient in single precision.
TEST(PolyphaseRecord, CentreTapIsTheQuotientOfFloats)
{
    const struct {
        Rates rates;
        double expected;
    } cases[] = {
        {{8000, 8000}, 0.95},
        {{16000, 48000}, 0.95},
        {{48000, 16000}, static_cast<double>(1.0f / 3.0f) * 0.95},
        {{48000, 44100}, static_cast<double>(147.0f / 160.0f) * 0.95},
    };
    for (const auto &c : cases) {
        const auto resampler = newResampler(c.rates, "order=5");
        const PolyphaseResampler &record = recordOf(resampler);
        const int32_t centre = 5 * std::max(record.upFactor, record.downFactor); // N / 2
        const double tap = coefficientOf(record.bank, centre % record.upFactor, centre / record.upFactor);
        EXPECT_TRUE(sameBits(tap, c.expected)) << c.rates;
    }
    EXPECT_NE(static_cast<double>(1.0f / 3.0f), 1.0 / 3.0);
}

// The reason that coefficients are compared with those of a definition: with a period of N, the usual
// Blackman window, they would be others.
TEST(PolyphaseRecord, WindowHasAPeriodOfNPlusOne)
{
    constexpr double pi = 3.141592653589793;
    constexpr int32_t order = 10, N = 20;
    const auto resampler = newResampler({1, 1}, "order=10");
    const auto tap = [&](int32_t i, int32_t period) {
        const double window =
            0.42 - 0.5 * std::cos(2 * pi * i / period) + 0.08 * std::cos(4 * pi * i / period);
        return std::sin(0.95 * pi * (i - order)) / (pi * (i - order)) * window;
    };
    for (int32_t i = 0; i < order; ++i) {
        const double h = coefficientOf(recordOf(resampler).bank, 0, i);
        EXPECT_NEAR(h, tap(i, N + 1), 1e-15) << i;
        EXPECT_EQ(h, coefficientOf(recordOf(resampler).bank, 0, N - i)) << i;
        if (i > 0) { // where both windows are 0
            EXPECT_GT(std::abs(h - tap(i, N)), 1e-6) << i;
        }
    }
}

TEST(PolyphaseRecord, DelayLineHoldsTheNewestSamplesWhateverTheBlocks)
{
    support::Random random;
    for (const Rates rates : {Rates{44100, 48000}, {48000, 16000}, {1, 1}, {3, 2}})
        for (const bool compensates : {true, false}) {
            const auto resampler =
                newResampler(rates, compensates ? "order=3" : "order=3 delaycompensation=0");
            const PolyphaseResampler &record = recordOf(resampler);
            PlainPolyphase plain(rates, 3, compensates);
            const int32_t taps = plain.taps;
            int32_t pushed = 0, longest = record.history;
            for (const int32_t count : {1, 2, taps - 1, taps, taps + 1, 0, 5 * taps + 3, 1, 7}) {
                const auto input = random.noise(static_cast<size_t>(count));
                const auto room = static_cast<size_t>(lengthAfter(count, rates)) + 1;
                EXPECT_TRUE(sameBits(convert(resampler.get(), input, room), plain.run(input)));
                pushed += count;
                longest = std::max(longest, count);
                EXPECT_EQ(record.nextSample, pushed % record.downFactor);
                EXPECT_EQ(record.phase, plain.phase);
                EXPECT_EQ(record.delayToSkip, plain.toSkip);
                EXPECT_EQ(record.workCapacity, longest); // it only grows
                for (int32_t j = 0; j < record.history; ++j)
                    EXPECT_EQ(sampleOf(record, j), plain.sample(j)) << j;
            }
        }
}

TEST(PolyphaseRecord, AFlushThatWritesLeavesThePhaseBelowZero)
{
    for (const Rates rates : {Rates{44100, 48000}, {48000, 16000}, {1, 1}, {1, 5}})
        for (const int32_t maxCount : {0, 1, 2}) {
            const auto resampler = newResampler(rates, "order=3");
            const PolyphaseResampler &record = recordOf(resampler);
            PlainPolyphase plain(rates, 3, true);
            flush(resampler.get(), maxCount);
            plain.flush(maxCount);
            EXPECT_LT(record.phase, 0);
            EXPECT_EQ(record.phase, plain.phase) << rates;
            EXPECT_EQ(record.delay, plain.delay) << rates;
            EXPECT_EQ(record.delayToSkip, plain.toSkip) << rates;
        }
}

TEST(PolyphaseRecord, AFlushLeavesItsZerosInTheDelayLine)
{
    support::Random random;
    for (const Rates rates : {Rates{44100, 48000}, {48000, 16000}, {1, 1}, {3, 2}, {1, 5}})
        for (const int32_t maxCount : {0, 1, 2}) {
            const auto resampler = newResampler(rates, "order=3");
            const PolyphaseResampler &record = recordOf(resampler);
            PlainPolyphase plain(rates, 3, true);
            const auto input = random.noise(2 * static_cast<size_t>(plain.taps) + 3);
            convert(resampler.get(), input, static_cast<size_t>(lengthAfter(std::ssize(input), rates)));
            plain.run(input);
            flush(resampler.get(), maxCount);
            plain.flush(maxCount);
            for (int32_t j = 0; j < plain.taps; ++j)
                EXPECT_EQ(sampleOf(record, j), plain.sample(j)) << rates << ", " << maxCount << ", " << j;
        }
}

// Zeros whose products with the filter are all -0.0 show where a sum starts: from +0.0 it stays +0.0.
TEST(PolyphaseRecord, SumsStartAtPlusZero)
{
    const std::string config = "order=3; delaycompensation=0";
    const auto model = newResampler({1, 1}, config);
    constexpr size_t taps = 7;
    ASSERT_EQ(recordOf(model).tapsPerPhase, int32_t{taps});
    double coefs[taps];
    for (size_t j = 0; j < taps; ++j)
        coefs[j] = coefficientOf(recordOf(model).bank, 0, static_cast<int32_t>(j));
    Floats input(taps); // oldest first
    for (size_t j = 0; j < taps; ++j) {
        ASSERT_NE(coefs[j], 0.0);
        input[taps - 1 - j] = coefs[j] < 0.0 ? 0.0f : -0.0f;
    }
    ASSERT_LT(coefs[0], 0.0); // so that the zero that a flush plays gives -0.0, too

    for (const std::vector<size_t> &cuts : {std::vector<size_t>{7}, {1, 6}, {6, 1}}) {
        const Floats output = convertInBlocks(newResampler({1, 1}, config).get(), {1, 1}, input, cuts);
        ASSERT_EQ(output.size(), taps);
        EXPECT_EQ(support::bitsOf(output.back()), 0u) << testing::PrintToString(cuts);
    }
    const auto flushed = newResampler({1, 1}, config);
    convert(flushed.get(), std::span(input).first(taps - 1), taps - 1);
    const Floats tail = flush(flushed.get(), 1);
    ASSERT_EQ(tail.size(), 1u);
    EXPECT_EQ(support::bitsOf(tail[0]), 0u);
}
