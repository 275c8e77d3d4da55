// Parameters that nobody means: the record stays within its memory and does what its definition gives there.
#include "solafs/scaler_pair.h"
#include "solafs/signals.h"

#include <array>
#include <limits>

namespace
{

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

constexpr std::array hostileSpeeds = {0.0f,  -0.0f,  -1.0f,    -0.3f,     -100.0f,    1e-30f,  1e-45f, 3.01f,
                                      4.0f,  8.99f,  9.01f,    12.0f,     50.0f,      1000.0f, 1e6f,   1e9f,
                                      1e30f, -1e30f, infinity, -infinity, notANumber, 3.4e38f};

} // namespace

TEST(SolafsHostileSpeed, StreamHasTheBitsOfThePlainForm)
{
    support::Random random;
    const std::vector<float> samples = random.noise(3000);
    for (const float speed : hostileSpeeds) {
        SCOPED_TRACE(speed);
        ScalerPair pair(20, 8000);
        for (int round = 0; round < 20; ++round) {
            pair.input(samples, speed);
            pair.output(1000);
            pair.cursor(round * 700 - 500);
        }
    }
}

TEST(SolafsHostileSpeed, BetweenPlainSpeedsHasTheBitsOfThePlainForm)
{
    support::Random random;
    const std::vector<float> samples = random.noise(1000);
    for (const float speed : hostileSpeeds) {
        SCOPED_TRACE(speed);
        ScalerPair pair(20, 8000);
        for (const float next : {1.0f, speed, 1.5f, speed, 0.7f})
            for (int round = 0; round < 5; ++round) {
                pair.input(samples, next);
                pair.output(700);
                pair.cursor(round * 700 - 500);
            }
    }
}

TEST(SolafsHostileSpeed, AboveNineCountsAndDropsWhatTheAnalysisHasSkipped)
{
    // Hops of 80 at speed 20.0. 641 samples are just enough for one hop; it puts the analysis at 1600. What
    // is more than 160 behind it is not kept, so of the next 7000 samples 799 are counted only, and the
    // second has room for more.
    ScalerPair pair(20, 8000);
    support::Random random;
    const std::vector<float> samples = random.noise(20000);
    const std::span<const float> all(samples);
    EXPECT_EQ(pair.input(all.first(641), 20.0f), 641);
    EXPECT_EQ(pair.output(1000), 80u);
    EXPECT_EQ(pair.input(all.first(20000), 20.0f), 799 + 8000);
    EXPECT_EQ(pair.input(all.first(20000), 20.0f), 0);
    EXPECT_GT(pair.output(1000), 0u);
    EXPECT_EQ(pair.allOutput().back() == 0.0f, false); // what was kept is heard
}

TEST(SolafsHostileStride, ZeroServesOneSampleOverAndOver)
{
    const SolafsHandle solafs(ORVA_SolafsCreate(20, 8000, 0));
    float sample = 0.5f;
    ASSERT_EQ(ORVA_SolafsInputData(solafs.get(), 0, &sample, 2000, 1.0f), 2000);
    sample = 0.0f;
    EXPECT_EQ(ORVA_SolafsOutputData(solafs.get(), 0, &sample, 1000), 960);
    EXPECT_EQ(sample, 0.5f);
}

TEST(SolafsHostile, AnyParametersHaveTheBitsOfThePlainForm)
{
    support::Random random;
    const std::vector<float> noise = random.noise(6000);
    const auto anySpeed = [&]() -> float {
        switch (random.integer(0, 3)) {
        case 0:
            return random.anyFloat();
        case 1:
            return hostileSpeeds[static_cast<size_t>(random.integer(0, std::ssize(hostileSpeeds) - 1))];
        case 2:
            return static_cast<float>(random.real(-1.0, 12.0));
        default:
            return static_cast<float>(random.real(0.5, 3.0));
        }
    };
    for (int round = 0; round < 100 && !HasFailure(); ++round) {
        const auto sampleRate = static_cast<int32_t>(random.integer(1000, 12000));
        const auto longest = random.integer(0, 9) == 0 ? 4000 : 20;
        const auto frameMs = static_cast<int32_t>(random.integer(8000 / sampleRate + 1, longest));
        auto stride = static_cast<int32_t>(random.integer(-6, 5));
        stride += stride >= 0; // 0 has a test of its own
        const auto offset = static_cast<int32_t>(random.integer(0, std::abs(stride) - 1));
        SCOPED_TRACE(testing::Message()
                     << frameMs << " ms at " << sampleRate << ", stride " << stride << ", offset " << offset);
        ScalerPair pair(frameMs, sampleRate, {stride, offset});
        float speed = anySpeed();
        const auto steps = random.integer(1, 40);
        for (int64_t step = 0; step < steps && !HasFailure(); ++step) {
            if (random.integer(0, 2) == 0)
                speed = anySpeed();
            const auto count = static_cast<size_t>(random.integer(0, random.integer(0, 1) == 0 ? 50 : 6000));
            pair.input(std::span<const float>(noise).first(count), speed);
            const int64_t capacity =
                random.integer(0, 9) == 0 ? random.integer(INT32_MIN, 0) : random.integer(0, 800);
            pair.output(static_cast<int32_t>(capacity));
            pair.cursor(random.integer(-1000, 100000));
        }
    }
}
