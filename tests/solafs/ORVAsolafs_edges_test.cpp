// The edges of the stream: how much comes out and when, full and empty buffers, records that cannot run.
#include "solafs/scaler_pair.h"
#include "solafs/signals.h"
#include "support/log.h"

#include <kett/KTmem.h>
#include <kett/KTsettings.h>

#include <cmath>
#include <limits>

namespace
{

constexpr int32_t rate = 16000;
constexpr int32_t frame = 320; // 20 ms
constexpr int32_t hop = 160;

SolafsHandle channel(int32_t frameMs = 20, int32_t sampleRate = rate)
{
    return SolafsHandle(ORVA_SolafsCreate(frameMs, sampleRate, 1));
}

int32_t push(const SolafsHandle &solafs, const std::vector<float> &samples, float speed)
{
    return ORVA_SolafsInputData(solafs.get(), 0, samples.data(), static_cast<int32_t>(samples.size()), speed);
}

std::vector<float> pull(const SolafsHandle &solafs, int32_t capacity = 4 * rate)
{
    std::vector<float> frames(static_cast<size_t>(std::max(capacity, hop)));
    const int32_t written = ORVA_SolafsOutputData(solafs.get(), 0, frames.data(), capacity);
    frames.resize(static_cast<size_t>(written));
    return frames;
}

} // namespace

TEST(SolafsOutput, AtSpeedOneIsTheInputWithoutDelay)
{
    const std::vector<float> samples = voice(12000);
    const SolafsHandle solafs = channel();
    ASSERT_EQ(push(solafs, samples, 1.0f), 12000);
    const std::vector<float> out = pull(solafs);
    ASSERT_GE(out.size(), 12000u - 7 * hop);
    for (size_t i = 0; i < out.size(); ++i) // two roundings: of the product and of the sum
        ASSERT_LE(std::abs(out[i] - samples[i]), 1.2e-7f * std::abs(samples[i])) << i;
}

TEST(SolafsOutput, LengthFollowsTheFormulaOfTheHeader)
{
    support::Random random;
    for (const float speed : {0.5f, 0.8f, 1.0f, 1.1f, 2.0f, 3.0f})
        for (const int32_t length : {0, 1, 3 * frame, 1120, 1121, 1280, 1281, 5000, 15840}) {
            const SolafsHandle solafs = channel();
            ASSERT_EQ(push(solafs, random.noise(static_cast<size_t>(length)), speed), length);
            int32_t hops = 0;
            while (static_cast<int32_t>(static_cast<float>(hops * hop) * speed) < length - 1120) // 3.5 frames
                ++hops;
            EXPECT_EQ(pull(solafs).size(), static_cast<size_t>(hops * hop)) << length << " at " << speed;
        }
}

TEST(SolafsOutput, SilenceOfThreeAndAHalfFramesBringsTheTailOut)
{
    for (const float speed : {0.5f, 1.0f, 1.7f, 3.0f}) {
        const SolafsHandle solafs = channel();
        ASSERT_EQ(push(solafs, voice(8000), speed), 8000);
        const size_t before = pull(solafs).size();
        ASSERT_EQ(push(solafs, std::vector<float>(1120, 0.0f), speed), 1120);
        const auto all = static_cast<double>(before + pull(solafs).size());
        EXPECT_GE(all, 8000.0 / static_cast<double>(speed));
        EXPECT_LT(all, 8000.0 / static_cast<double>(speed) + hop + 1.0);
    }
}

TEST(SolafsOutput, WithTooLittleInputWritesNothing)
{
    const SolafsHandle solafs = channel();
    std::vector<float> frames(hop, 7.0f);
    EXPECT_EQ(ORVA_SolafsOutputData(solafs.get(), 0, frames.data(), hop), 0);
    ASSERT_EQ(push(solafs, std::vector<float>(1120, 0.25f), 1.0f), 1120);
    EXPECT_EQ(ORVA_SolafsOutputData(solafs.get(), 0, frames.data(), hop), 0);
    EXPECT_EQ(frames, std::vector<float>(hop, 7.0f));
    ASSERT_EQ(push(solafs, {0.25f}, 1.0f), 1); // one sample more is enough
    EXPECT_EQ(ORVA_SolafsOutputData(solafs.get(), 0, frames.data(), hop), hop);
    EXPECT_EQ(ORVA_SolafsOutputData(solafs.get(), 0, frames.data(), hop), 0);
}

TEST(SolafsOutput, CapacityCountsWholeHopsAndTheFirstAlwaysFits)
{
    struct Case {
        int32_t capacity;
        int32_t written;
    };
    for (const Case &c :
         {Case{INT32_MIN, hop}, Case{-1, hop}, Case{0, hop}, Case{hop - 1, hop}, Case{hop, hop},
          Case{hop + 1, hop}, Case{2 * hop - 1, hop}, Case{2 * hop, 2 * hop}, Case{5 * hop + 100, 5 * hop}}) {
        const SolafsHandle solafs = channel();
        ASSERT_EQ(push(solafs, voice(8000), 1.2f), 8000);
        std::vector<float> frames(6 * hop, 7.0f);
        EXPECT_EQ(ORVA_SolafsOutputData(solafs.get(), 0, frames.data(), c.capacity), c.written) << c.capacity;
        for (size_t i = static_cast<size_t>(c.written); i < frames.size(); ++i)
            ASSERT_EQ(frames[i], 7.0f) << c.capacity << ": the rest of the array changed at " << i;
    }
}

TEST(SolafsInput, TakesWhatFitsIntoOneSecond)
{
    const SolafsHandle solafs = channel();
    const std::vector<float> samples = voice(20000);
    EXPECT_EQ(push(solafs, samples, 1.0f), rate - hop); // half a frame of lead-in belongs to the second
    EXPECT_EQ(push(solafs, samples, 1.0f), 0);
    ASSERT_EQ(pull(solafs, 3 * hop).size(), 3u * hop);
    EXPECT_EQ(push(solafs, samples, 1.0f), 2 * hop); // two half frames behind the analysis are kept
    EXPECT_EQ(push(solafs, samples, 1.0f), 0);
}

TEST(SolafsInput, NegativeCountAndNullDataTakeNothing)
{
    const SolafsHandle solafs = channel();
    const float sample = 0.5f;
    for (const int32_t count : {-1, INT32_MIN, 0})
        EXPECT_EQ(ORVA_SolafsInputData(solafs.get(), 0, &sample, count, 1.0f), 0);
    EXPECT_EQ(ORVA_SolafsInputData(solafs.get(), 0, nullptr, 100, 1.0f), 0);
    EXPECT_EQ(ORVA_SolafsInputData(solafs.get(), 0, nullptr, 0, 1.0f), 0);
    ASSERT_EQ(push(solafs, std::vector<float>(4000, 0.5f), 1.0f), 4000);
    EXPECT_EQ(ORVA_SolafsOutputData(solafs.get(), 0, nullptr, 1000), 0);
    EXPECT_EQ(pull(solafs).size(), 2880u); // nothing was lost to the refused call
}

TEST(SolafsNull, EveryCallOnANullRecordGivesZero)
{
    KTMEM_DisposeDisplayed();
    float sample = 0.5f;
    EXPECT_EQ(ORVA_SolafsInputData(nullptr, 0, &sample, 1, 1.0f), 0);
    EXPECT_EQ(ORVA_SolafsOutputData(nullptr, 0, &sample, 1), 0);
    EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(nullptr, 1000), 0);
    EXPECT_EQ(sample, 0.5f);
    ORVA_SolafsDestroy(nullptr);
    EXPECT_EQ(KTMEM_DisposeDisplayed(), 0);
}

TEST(SolafsDestroy, LeavesTheRecordInPlaceForDisposeDisplayed)
{
    KTMEM_DisposeDisplayed();
    support::Log log;
    KTSETTINGS_SetEx(nullptr, "kett.mem.display=%d", 1);
    ORVA_SOLAFS *solafs = ORVA_SolafsCreate(20, rate, 1);
    const std::vector<float> samples = voice(8000);
    ASSERT_EQ(ORVA_SolafsInputData(solafs, 0, samples.data(), 8000, 2.0f), 8000);
    EXPECT_TRUE(log.messages.empty());

    ORVA_SolafsDestroy(solafs);
    ASSERT_EQ(log.messages.size(), 1u);
    EXPECT_EQ(log.messages[0].level, KTDEBUG_LEVEL_LOG);
    EXPECT_EQ(log.messages[0].text.rfind("KTMEM_DisplayMemDescr: 'Solafs channel': 6 blocks, ", 0), 0u)
        << log.messages[0].text; // the record and its five arrays

    std::vector<float> frames(8000);
    EXPECT_EQ(ORVA_SolafsOutputData(solafs, 0, frames.data(), hop), hop); // still there
    EXPECT_EQ(KTMEM_DisposeDisplayed(), 1);
    EXPECT_EQ(KTMEM_DisposeDisplayed(), 0);
    KTSETTINGS_UnsetEx(nullptr, "kett.mem.display");
}

TEST(SolafsTooLongFrame, ComesToAHaltWithoutHarm)
{
    struct Case {
        const char *what;
        int32_t frameMs;
        int32_t taken;
        bool runs;
    };
    for (const Case &c :
         {Case{"the longest that runs", 222, 8000 - 888, true}, Case{"one step more", 223, 8000 - 892, false},
          Case{"half a frame fills the second", 2000, 0, false},
          Case{"half a frame is more", 3000, 0, false}}) {
        SCOPED_TRACE(c.what);
        const SolafsHandle solafs = channel(c.frameMs, 8000);
        const std::vector<float> samples = voice(8000);
        EXPECT_EQ(push(solafs, samples, 1.0f), c.taken);
        std::vector<float> frames(8000);
        int32_t written = 0;
        for (int round = 0; round < 10; ++round) {
            written = ORVA_SolafsOutputData(solafs.get(), 0, frames.data(), 0);
            push(solafs, samples, 1.0f);
        }
        EXPECT_EQ(written > 0, c.runs);
        ORVA_SolafsTranslateCursorPosition(solafs.get(), 5000);
    }
}

namespace
{

struct NoHop {
    int32_t frameMs;
    int32_t sampleRate;
    int32_t taken; // of 100 offered
};
const std::vector<NoHop> withoutHop = {{1, 7999, 100}, {7, 1000, 100},  {0, 44100, 100},  {-20, 44100, 100},
                                       {20, 0, 0},     {20, -44100, 0}, {INT32_MIN, 1, 1}};

} // namespace

TEST(SolafsHopZero, AllCallsButOutputAfterInputAreSafe)
{
    for (const NoHop &c : withoutHop) {
        SCOPED_TRACE(testing::Message() << c.frameMs << " ms at " << c.sampleRate);
        const SolafsHandle solafs = channel(c.frameMs, c.sampleRate);
        ASSERT_NE(solafs, nullptr);
        float sample = 7.0f;
        EXPECT_EQ(ORVA_SolafsOutputData(solafs.get(), 0, &sample, 1), 0);
        EXPECT_EQ(sample, 7.0f);
        EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(solafs.get(), 10), 0);
        EXPECT_EQ(push(solafs, std::vector<float>(100, 0.5f), 2.0f), c.taken);
        EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(solafs.get(), 10), 20);
    }
}
