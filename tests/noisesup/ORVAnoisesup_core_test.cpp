// The private steps of a frame.
#include "ORVAnoisesup_reference.h"
#include "noisesup/ORVAnoisesup_internal.h"
#include "noisesup/kernels/ORVAnoisesup_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

using namespace noisesup;
using namespace orva;

TEST(NoiseSupNarrowing, HasItsOwnLowerThreshold)
{
    struct {
        float v;
        int16_t expected;
    } const cases[] = {
        {0, 0},
        {0.9f, 0},
        {-0.9f, 0},
        {1234.99f, 1234},
        {-1234.99f, -1234},
        {32767, 32767},
        {32767.5f, 32767},
        {1e30f, 32767},
        {std::numeric_limits<float>::infinity(), 32767},
        {-32677.9f, -32677},
        {-32678, -32678},
        {-32678.5f, -32768},
        {-32700, -32768},
        {-32768, -32768},
        {-1e30f, -32768},
        {-std::numeric_limits<float>::infinity(), -32768},
        {std::numeric_limits<float>::quiet_NaN(), 0},
    };
    for (const auto &[v, expected] : cases)
        EXPECT_EQ(narrowed(v), expected) << v;
}

TEST(NoiseSupRecord, HoldsWhatTheRateAsksFor)
{
    for (const int32_t rate : {8000, 16000, 32000}) {
        const auto created = suppressor(rate, 0);
        const ORVA_NOISESUP &record = *created;
        EXPECT_EQ(record.sampleRate, rate);
        EXPECT_EQ(record.frameSize, rate / 100);
        EXPECT_EQ(record.analysisBlock != nullptr, rate == 32000);
        EXPECT_EQ(record.synthesisBlock != nullptr, rate == 32000);
    }
}

TEST(NoiseSupCore, GivesOneAndTouchesNothingAfterAFrame)
{
    constexpr int16_t mark = 12345;
    for (const int32_t rate : {8000, 16000, 32000}) {
        const auto created = suppressor(rate, 3);
        const auto size = static_cast<size_t>(rate / 100);
        Frame input(size + 80, mark), output(size + 80, mark);
        created->inputFrame = input.data();
        created->outputFrame = output.data();
        for (int frame = 0; frame < 5; ++frame) {
            for (size_t i = 0; i < size; ++i)
                input[i] = static_cast<int16_t>((i * 7919) % 20000 - 10000);
            EXPECT_EQ(_noisesup_core(created.get()), 1);
            for (size_t i = size; i < size + 80; ++i) {
                ASSERT_EQ(input[i], mark) << rate;
                ASSERT_EQ(output[i], mark) << rate;
            }
        }
    }
}

TEST(NoiseSupCore, AtThirtyTwoKilohertzTheCleanedBandsStayInTheAnalysisBlock)
{
    const auto created = suppressor(32000, 0);
    const NsHandle *const before = created->ns;
    int16_t loudest = 0;
    for (int frame = 0; frame < 20; ++frame) {
        for (int i = 0; i < 320; ++i)
            created->inputFrame[i] = static_cast<int16_t>(8000 * std::sin(0.05 * (frame * 320 + i)));
        EXPECT_EQ(_noisesup_core(created.get()), 1);
        for (const int16_t v : created->analysisBlock->low)
            loudest = std::max(loudest, v);
        for (int i = 0; i < 160; ++i) {
            ASSERT_EQ(created->synthesisBlock->low[i], 0);
            ASSERT_EQ(created->synthesisBlock->high[i], 0);
        }
        for (int i = 0; i < 320; ++i)
            ASSERT_EQ(created->outputFrame[i], 0);
    }
    EXPECT_GT(loudest, 100);
    EXPECT_EQ(created->ns, before);
}

TEST(NoiseSupCore, AtThirtyTwoKilohertzTheBandsAreThoseOfDirectCalls)
{
    const auto created = suppressor(32000, 2);
    NsHandle *ns = nullptr;
    ASSERT_EQ(createNs(&ns), 0);
    ASSERT_EQ(WebRtcNs_Init(ns, 32000), 0);
    ASSERT_EQ(WebRtcNs_set_policy(ns, 2), 0);
    int32_t state1[6] = {}, state2[6] = {};
    for (int frame = 0; frame < 30; ++frame) {
        int16_t input[320], low[160], high[160];
        for (int i = 0; i < 320; ++i)
            input[i] = created->inputFrame[i] =
                static_cast<int16_t>(((frame * 320 + i) * 7919) % 24000 - 12000);
        WebRtcSpl_AnalysisQMF(input, 320, low, high, state1, state2);
        float inLow[160], inHigh[160], outLow[160], outHigh[160];
        for (int i = 0; i < 160; ++i) {
            inLow[i] = static_cast<float>(low[i]);
            inHigh[i] = static_cast<float>(high[i]);
        }
        const float *const in[] = {inLow, inHigh};
        float *const out[] = {outLow, outHigh};
        WebRtcNs_Process(ns, in, 2, out);
        _noisesup_core(created.get());
        for (int i = 0; i < 160; ++i) {
            ASSERT_EQ(created->analysisBlock->low[i], narrowed(outLow[i])) << frame << ", " << i;
            ASSERT_EQ(created->analysisBlock->high[i], narrowed(outHigh[i])) << frame << ", " << i;
        }
    }
    freeNs(ns);
}
