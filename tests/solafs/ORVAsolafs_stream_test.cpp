// Streams through the library and through the plain form, compared to the last bit.
#include "solafs/scaler_pair.h"
#include "solafs/signals.h"

namespace
{

const std::vector<float> speeds = {0.5f, 0.7f, 0.99f, 1.0f, 1.02f, 1.5f, 2.0f, 3.0f};

void expectEqualAtAllSpeeds(const std::vector<float> &samples, int32_t sampleRate)
{
    for (const float speed : speeds) {
        SCOPED_TRACE(speed);
        ScalerPair pair(20, sampleRate);
        pair.run(samples, 1024, speed);
        EXPECT_GT(pair.allOutput().size(), samples.size() / 5);
        EXPECT_EQ(pair.plain.searches > 0, speed != 1.0f);
    }
}

} // namespace

TEST(SolafsStream, VoiceHasTheBitsOfThePlainForm)
{
    expectEqualAtAllSpeeds(voice(18000), 48000);
}

TEST(SolafsStream, TonesHaveTheBitsOfThePlainForm)
{
    expectEqualAtAllSpeeds(tones(14000, 44100.0), 44100);
}

TEST(SolafsStream, NoiseHasTheBitsOfThePlainForm)
{
    support::Random random;
    expectEqualAtAllSpeeds(random.noise(7000), 16000);
}

TEST(SolafsStream, SilenceStaysSilence)
{
    for (const float speed : speeds) {
        SCOPED_TRACE(speed);
        ScalerPair pair(20, 16000);
        pair.run(std::vector<float>(4000, 0.0f), 800, speed);
        EXPECT_TRUE(support::sameBits(pair.allOutput(), std::vector<float>(pair.allOutput().size(), 0.0f)));
        EXPECT_EQ(pair.plain.fruitlessSearches, pair.plain.searches);
    }
}

TEST(SolafsStream, NegativeCorrelationAtEverySkewTakesSkewZero)
{
    // At speed 3.0 and hops of 160 the analysis stands at 480 m. What has been played ends at 480 m + 160,
    // and the next search looks at 480 m + 320 and on.
    ScalerPair pair(20, 16000);
    pair.run(turned(16000, 480 * 10 + 240), 1600, 3.0f);
    EXPECT_EQ(pair.plain.fruitlessSearches, 1);
}

TEST(SolafsStream, LoudAndFaintInputHasTheBitsOfThePlainForm)
{
    support::Random random;
    for (const float scale : {32768.0f, 1e18f, 1e-3f, 1e-20f, 1e-42f}) {
        SCOPED_TRACE(scale);
        std::vector<float> samples = random.noise(6000);
        for (float &x : samples)
            x *= scale;
        ScalerPair pair(20, 16000);
        pair.run(samples, 1000, 1.5f);
        EXPECT_GT(pair.plain.searches, 10);
    }
}

TEST(SolafsStream, InfinitiesAndNotANumberAmongTheSamplesPassAsInThePlainForm)
{
    support::Random random;
    std::vector<float> samples = random.noise(8000);
    for (int i = 0; i < 20; ++i)
        samples[static_cast<size_t>(random.integer(0, 7999))] = random.anyFloat();
    samples[3000] = std::numeric_limits<float>::infinity();
    samples[5000] = std::numeric_limits<float>::quiet_NaN();
    ScalerPair pair(20, 16000);
    pair.run(samples, 1000, 0.8f);
}

TEST(SolafsStream, FramesOfAnyLengthHaveTheBitsOfThePlainForm)
{
    support::Random random;
    struct Case {
        int32_t frameMs;
        int32_t sampleRate;
        int hop;
    };
    for (const Case &c : {Case{1, 8000, 4}, Case{2, 8000, 8}, Case{3, 8000, 12}, Case{5, 8000, 20},
                          Case{7, 11025, 36}, Case{10, 11025, 52}, Case{30, 22050, 328}, Case{20, 96000, 960},
                          Case{220, 8000, 880}, Case{100, 24000, 1200}}) {
        SCOPED_TRACE(c.hop);
        const std::vector<float> samples = random.noise(static_cast<size_t>(16 * c.hop + 500));
        for (const float speed : {0.6f, 1.7f}) {
            ScalerPair pair(c.frameMs, c.sampleRate);
            pair.run(samples, static_cast<size_t>(c.sampleRate / 50), speed);
            EXPECT_GT(pair.allOutput().size(), 0u);
            EXPECT_EQ(pair.allOutput().size() % static_cast<size_t>(c.hop), 0u);
        }
    }
}

TEST(SolafsStream, AnyStrideAndOffsetServeOneChannelAndTouchNoOther)
{
    const std::vector<float> samples = voice(6000);
    for (int32_t stride = 1; stride <= 6; ++stride)
        for (int32_t offset = 0; offset < stride; ++offset) {
            SCOPED_TRACE(testing::Message() << "stride " << stride << ", offset " << offset);
            ScalerPair pair(20, 16000, {stride, offset});
            pair.run(samples, 777, 1.3f, 500);
            EXPECT_GT(pair.allOutput().size(), 3000u);
        }
}

TEST(SolafsStream, AnyCutOfTheInputHasTheBitsOfThePlainForm)
{
    const std::vector<float> samples = voice(20000); // more than fits
    for (const size_t block : {97, 441, 1600, 20000}) {
        SCOPED_TRACE(block);
        ScalerPair pair(20, 16000);
        pair.run(samples, block, 1.5f);
    }
}

TEST(SolafsStream, SingleSamplesAndEmptyBlocksHaveTheBitsOfThePlainForm)
{
    const std::vector<float> samples = voice(2000);
    ScalerPair pair(20, 8000);
    for (const float &x : samples) {
        pair.input({&x, 1}, 0.75f);
        pair.input({}, 0.75f);
        pair.output(80);
    }
    EXPECT_GT(pair.allOutput().size(), 1500u);
}

TEST(SolafsStream, AnyCapacityHasTheBitsOfThePlainForm)
{
    const std::vector<float> samples = voice(8000);
    for (const int32_t capacity : {INT32_MIN, -1, 0, 1, 159, 160, 161, 319, 320, 321, 1000, 65536}) {
        SCOPED_TRACE(capacity);
        ScalerPair pair(20, 16000);
        pair.run(samples, 1500, 0.8f, capacity);
        EXPECT_GT(pair.allOutput().size(), 8000u);
    }
}

TEST(SolafsStream, ChangingSpeedsHaveTheBitsOfThePlainForm)
{
    support::Random random;
    const std::vector<float> samples = voice(40000);
    int searches = 0;
    for (int round = 0; round < 8; ++round) {
        ScalerPair pair(20, 16000);
        std::span<const float> rest(samples);
        float speed = 1.0f;
        while (!rest.empty() && !HasFailure()) {
            if (random.integer(0, 3) == 0)
                speed = static_cast<float>(random.real(0.5, 3.0));
            if (random.integer(0, 9) == 0)
                speed = 1.0f;
            const auto length = static_cast<size_t>(random.integer(0, 3000));
            rest = rest.subspan(
                static_cast<size_t>(pair.input(rest.first(std::min(length, rest.size())), speed)));
            for (int64_t pulls = random.integer(0, 4); pulls > 0; --pulls)
                pair.output(static_cast<int32_t>(random.integer(0, 1500)));
            while (pair.output(4000) > 0 && random.integer(0, 3) > 0) {
            }
            pair.cursor(random.integer(-100, 60000));
        }
        searches += pair.plain.searches;
    }
    EXPECT_GT(searches, 100);
}

TEST(SolafsStream, ChannelsOfOneArrayEachMakeTheirOwnSearch)
{
    const std::vector<float> left = voice(12000);
    const std::vector<float> right = tones(12000, 16000.0);
    std::vector<float> input(24000);
    for (size_t i = 0; i < left.size(); ++i) {
        input[2 * i] = left[i];
        input[2 * i + 1] = right[i];
    }
    std::vector<float> output(2 * 12000);
    const SolafsHandle first(ORVA_SolafsCreate(20, 16000, 2));
    const SolafsHandle second(ORVA_SolafsCreate(20, 16000, 2));
    ASSERT_EQ(ORVA_SolafsInputData(first.get(), 0, input.data(), 12000, 1.4f), 12000);
    ASSERT_EQ(ORVA_SolafsInputData(second.get(), 1, input.data(), 12000, 1.4f), 12000);
    const int32_t written = ORVA_SolafsOutputData(first.get(), 0, output.data(), 12000);
    ASSERT_EQ(ORVA_SolafsOutputData(second.get(), 1, output.data(), 12000), written);

    PlainScaler plainLeft(20, 16000);
    PlainScaler plainRight(20, 16000);
    plainLeft.input(left, 1.4f);
    plainRight.input(right, 1.4f);
    const std::vector<float> outputLeft = plainLeft.output(12000);
    const std::vector<float> outputRight = plainRight.output(12000);
    ASSERT_EQ(outputLeft.size(), static_cast<size_t>(written));
    for (size_t i = 0; i < outputLeft.size(); ++i) {
        ASSERT_TRUE(support::sameBits(output[2 * i], outputLeft[i])) << i;
        ASSERT_TRUE(support::sameBits(output[2 * i + 1], outputRight[i])) << i;
    }
}
