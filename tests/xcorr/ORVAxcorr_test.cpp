#include "ORVAxcorr_reference.h"

#include "support/log.h"
#include "support/random.h"
#include "support/recording.h"

#include <limits>
#include <thread>

using namespace xcorr;
using support::Random;
using support::sameBits;

namespace
{

const Form forms[] = {ORVA_XcorrProcExecute, ORVA_XcorrPhatProcess};

Samples impulse(size_t length, size_t at)
{
    Samples samples(length, 0.0f);
    samples[at] = 1.0f;
    return samples;
}

size_t placeOfPeak(const Samples &samples)
{
    const auto peak = std::max_element(samples.begin(), samples.end(),
                                       [](float a, float b) { return std::fabs(a) < std::fabs(b); });
    return static_cast<size_t>(peak - samples.begin());
}

void expectBothFormsAsStepped(const Samples &x, const Samples &y)
{
    ASSERT_TRUE(sameBits(run(ORVA_XcorrProcExecute, x, y), bySteps(x, y, false)))
        << x.size() << ", " << y.size();
    ASSERT_TRUE(sameBits(run(ORVA_XcorrPhatProcess, x, y), bySteps(x, y, true)))
        << x.size() << ", " << y.size();
}

// Each value against the definition; the tolerance is for the rounding of transforms of unit noise.
void expectValuesOfTheSum(const Samples &x, const Samples &y)
{
    const auto expected = bySums(x, y);
    const auto actual = run(ORVA_XcorrProcExecute, x, y);
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t j = 0; j < expected.size(); ++j)
        ASSERT_NEAR(actual[j], expected[j], 1e-6) << x.size() << ", " << y.size() << " at " << j;
}

} // namespace

TEST(Xcorr, ResultLengthIsTwiceTheLongerLessOne)
{
    struct {
        int32_t lengthX, lengthY, expected;
    } const cases[] = {{4, 4, 7}, {3, 5, 9}, {5, 3, 9}, {1, 1, 1}, {0, 6, 11}, {6, 0, 11}, {0, 0, -1}};
    for (const auto &[lengthX, lengthY, expected] : cases) {
        const Processor xcorr(ORVA_XcorrProcCreate(lengthX, lengthY));
        EXPECT_EQ(ORVA_XcorrVectorLength(xcorr.get()), expected) << lengthX << ", " << lengthY;
    }
    EXPECT_EQ(ORVA_XcorrVectorLength(nullptr), -1);
}

TEST(Xcorr, EqualImpulsesPeakAtLagZero)
{
    const auto r = run(ORVA_XcorrProcExecute, impulse(4, 1), impulse(4, 1));
    for (size_t j = 0; j < 7; ++j)
        EXPECT_NEAR(r[j], j == 3 ? 0.25 : 0.0, 1e-7) << j;
}

TEST(Xcorr, ADelayedFirstVectorPeaksAtAPositiveLag)
{
    for (const auto form : forms) {
        EXPECT_EQ(placeOfPeak(run(form, impulse(4, 3), impulse(4, 1))), 5u);
        EXPECT_EQ(placeOfPeak(run(form, impulse(4, 1), impulse(4, 3))), 1u);
    }
}

TEST(Xcorr, LagZeroOfAVectorWithItselfIsItsMeanSquare)
{
    Random random;
    const auto x = random.noise(100);
    double squares = 0;
    for (const float v : x)
        squares += double{v} * double{v};
    EXPECT_NEAR(run(ORVA_XcorrProcExecute, x, x)[99], squares / 100, 1e-6);
}

TEST(Xcorr, UnequalLengthsAreScaledByTheLonger)
{
    const auto r = run(ORVA_XcorrProcExecute, {1, 1, 1}, {0, 0, 0, 0, 1});
    EXPECT_EQ(r.size(), 9u);
    EXPECT_NEAR(r[0], 0.2, 1e-7) << "lag -4";
    EXPECT_NEAR(r[2], 0.2, 1e-7) << "lag -2";
    EXPECT_NEAR(r[3], 0.0, 1e-7) << "lag -1";
}

TEST(Xcorr, EqualsTheSumAtEveryLag)
{
    Random random;
    for (const size_t lengthX : {1u, 2u, 3u, 5u, 8u, 13u, 31u, 64u, 70u})
        for (const size_t lengthY : {1u, 2u, 7u, 16u, 37u, 70u})
            expectValuesOfTheSum(random.noise(lengthX), random.noise(lengthY));
    expectValuesOfTheSum(random.noise(509), random.noise(512));
}

TEST(Xcorr, EqualsItsStepsBitForBitInAllPairsOfShortLengths)
{
    Random random;
    const auto noise = random.noise(140);
    for (size_t lengthX = 1; lengthX <= 70; ++lengthX)
        for (size_t lengthY = 1; lengthY <= 70; ++lengthY) {
            const Samples x(noise.begin(), noise.begin() + static_cast<ptrdiff_t>(lengthX));
            const Samples y(noise.end() - static_cast<ptrdiff_t>(lengthY), noise.end());
            ASSERT_NO_FATAL_FAILURE(expectBothFormsAsStepped(x, y));
        }
}

TEST(Xcorr, EqualsItsStepsBitForBitAtLongLengths)
{
    Random random;
    for (const size_t length : {127u, 1024u, 4099u, 8192u, 48000u})
        expectBothFormsAsStepped(random.noise(length), random.noise(length - length / 3));
    const auto speech = support::recording();
    expectBothFormsAsStepped(Samples(speech.begin(), speech.begin() + 16384),
                             Samples(speech.begin() + 100, speech.begin() + 16484));
}

TEST(Xcorr, SilenceGivesZerosInBothForms)
{
    for (const auto form : forms) {
        EXPECT_EQ(run(form, Samples(9, 0.0f), {1, 2, 3}), Samples(17, 0.0f));
        EXPECT_EQ(run(form, {}, {1, 2, 3, 4, 5, 6}), Samples(11, 0.0f));
        EXPECT_EQ(run(form, {1, 2, 3, 4, 5, 6}, {}), Samples(11, 0.0f));
    }
}

TEST(Xcorr, TwoLengthsOfZeroExecuteNothing)
{
    ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(0, 0);
    ASSERT_NE(xcorr, nullptr);
    float output = 7;
    for (const auto form : forms)
        EXPECT_EQ(form(xcorr, nullptr, nullptr, &output), -1);
    EXPECT_EQ(output, 7);
    EXPECT_TRUE(ORVA_XcorrProcDestroy(xcorr));
}

TEST(Xcorr, ANullProcessorIsRefused)
{
    const float x = 1;
    float output = 7;
    for (const auto form : forms)
        EXPECT_EQ(form(nullptr, &x, &x, &output), -1);
    EXPECT_EQ(output, 7);
    EXPECT_TRUE(ORVA_XcorrProcDestroy(nullptr));
}

TEST(Xcorr, LengthsThatCannotBeDoubledAreRefusedInSilence)
{
    constexpr int32_t most = std::numeric_limits<int32_t>::max();
    constexpr int32_t least = std::numeric_limits<int32_t>::min();
    support::Log log;
    for (const auto &[lengthX, lengthY] : std::vector<std::pair<int32_t, int32_t>>{
             {-1, 4}, {4, -1}, {least, least}, {most, 4}, {4, most}, {most / 2 + 1, 0}, {-1, most}})
        EXPECT_EQ(ORVA_XcorrProcCreate(lengthX, lengthY), nullptr) << lengthX << ", " << lengthY;
    EXPECT_TRUE(log.messages.empty());
}

TEST(Xcorr, AnyAlignmentDoesAndNothingElseIsWritten)
{
    Random random;
    const auto x = random.noise(50), y = random.noise(41);
    for (const auto form : forms) {
        const auto expected = run(form, x, y);
        for (size_t offset = 0; offset < 4; ++offset) {
            Samples roomX(offset, 0.0f), roomY(3 - offset, 0.0f), output(99 + 8, -5.0f);
            roomX.insert(roomX.end(), x.begin(), x.end());
            roomY.insert(roomY.end(), y.begin(), y.end());
            const auto beforeX = roomX, beforeY = roomY;
            const auto xcorr = processor(50, 41);
            form(xcorr.get(), roomX.data() + offset, roomY.data() + 3 - offset, output.data() + 1 + offset);
            EXPECT_EQ(roomX, beforeX);
            EXPECT_EQ(roomY, beforeY);
            Samples framed(1 + offset, -5.0f);
            framed.insert(framed.end(), expected.begin(), expected.end());
            framed.resize(output.size(), -5.0f);
            EXPECT_TRUE(sameBits(output, framed)) << offset;
        }
    }
}

TEST(Xcorr, TheOutputMayStandOverTheInputs)
{
    Random random;
    const auto x = random.noise(30), y = random.noise(30);
    Samples room(59 + 30);
    std::copy(x.begin(), x.end(), room.begin());
    std::copy(y.begin(), y.end(), room.begin() + 25);
    const Samples seenX(room.begin(), room.begin() + 30), seenY(room.begin() + 25, room.begin() + 55);
    const auto xcorr = processor(30, 30);
    ORVA_XcorrProcExecute(xcorr.get(), room.data(), room.data() + 25, room.data());
    room.resize(59);
    EXPECT_TRUE(sameBits(room, run(ORVA_XcorrProcExecute, seenX, seenY)));
}

TEST(Xcorr, OneProcessorAlternatesBetweenItsForms)
{
    Random random;
    const auto xcorr = processor(200, 150);
    for (int round = 0; round < 6; ++round) {
        const auto x = random.noise(200), y = random.noise(150);
        const auto form = forms[round % 2];
        for (int again = 0; again < 2; ++again) {
            Samples output(399);
            form(xcorr.get(), x.data(), y.data(), output.data());
            EXPECT_TRUE(sameBits(output, run(form, x, y))) << round;
        }
    }
}

TEST(Xcorr, ProcessorsRunOnThreadsOfTheirOwn)
{
    Random random;
    std::vector<std::thread> threads;
    std::vector<int> right(4, 0);
    for (size_t i = 0; i < right.size(); ++i)
        threads.emplace_back([&right, i, x = random.noise(300 + i), y = random.noise(280)] {
            const auto expected = run(forms[i % 2], x, y);
            for (int round = 0; round < 20; ++round)
                right[i] += sameBits(run(forms[i % 2], x, y), expected) ? 1 : 0;
        });
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(right, std::vector<int>(4, 20));
}

TEST(XcorrPhat, ACircularShiftPeaksAtOneWhateverTheLevels)
{
    // Shifted within the transform, noise of half its length: only there is a shift circular.
    Random random;
    const auto noise = random.noise(512);
    Samples x(1024, 0.0f), y(1024, 0.0f);
    std::copy(noise.begin(), noise.end(), x.begin() + 100);
    std::copy(noise.begin(), noise.end(), y.begin());
    const auto r = run(ORVA_XcorrPhatProcess, x, y);
    EXPECT_EQ(placeOfPeak(r), 1023u + 100);
    EXPECT_NEAR(r[1123], 1.0, 1e-3);
    auto quiet = x;
    for (float &v : quiet)
        v *= 0.125f;
    const auto scaled = run(ORVA_XcorrPhatProcess, quiet, y);
    for (size_t j = 0; j < r.size(); ++j)
        ASSERT_NEAR(scaled[j], r[j], 1e-6) << j;
}

TEST(XcorrPhat, NeverExceedsOne)
{
    Random random;
    for (const size_t length : {3u, 16u, 100u, 1001u})
        for (const float v : run(ORVA_XcorrPhatProcess, random.noise(length), random.noise(length)))
            ASSERT_LE(std::fabs(v), 1.0f + 1e-5f);
}

TEST(XcorrPhat, OfNoiseEqualsTheDefinitionInDouble)
{
    Random random;
    const size_t length = 60;
    const auto x = random.noise(length), y = random.noise(length);
    const size_t period = 2 * length;
    const auto plain = bySums(x, y);
    std::vector<double> circular(period, 0.0);
    for (size_t j = 0; j < plain.size(); ++j)
        circular[(j + period - (length - 1)) % period] = plain[j];
    // Fourier transform of the correlation, each bin brought to magnitude one, and back.
    std::vector<double> expected(period, 0.0);
    const double turn = 2 * std::acos(-1.0) / static_cast<double>(period);
    for (size_t k = 0; k < period; ++k) {
        double re = 0, im = 0;
        for (size_t n = 0; n < period; ++n) {
            re += circular[n] * std::cos(turn * static_cast<double>(k * n));
            im -= circular[n] * std::sin(turn * static_cast<double>(k * n));
        }
        const double magnitude = std::hypot(re, im);
        for (size_t n = 0; n < period; ++n)
            expected[n] += (re * std::cos(turn * static_cast<double>(k * n)) -
                            im * std::sin(turn * static_cast<double>(k * n))) /
                           magnitude / static_cast<double>(period);
    }
    const auto r = run(ORVA_XcorrPhatProcess, x, y);
    for (size_t j = 0; j < r.size(); ++j)
        ASSERT_NEAR(r[j], expected[(j + period - (length - 1)) % period], 1e-4) << j;
}
