// The mapping of output positions to input positions, and the table of speeds behind it.
#include "solafs/scaler_pair.h"
#include "solafs/signals.h"

#include <limits>

namespace
{

constexpr float infinity = std::numeric_limits<float>::infinity();

struct Push {
    int32_t count;
    float speed;
};

// A record that has taken these blocks; all of them fit.
SolafsHandle fed(const std::vector<Push> &pushes)
{
    SolafsHandle solafs(ORVA_SolafsCreate(20, 44100, 1));
    const std::vector<float> silence(44100);
    for (const Push &push : pushes)
        EXPECT_EQ(ORVA_SolafsInputData(solafs.get(), 0, silence.data(), push.count, push.speed), push.count);
    return solafs;
}

} // namespace

TEST(SolafsCursor, WorkedPositions)
{
    struct Case {
        const char *what;
        std::vector<Push> pushes;
        int64_t position;
        int64_t expected;
    };
    const std::vector<Push> two = {{1000, 2.0f}, {1000, 0.5f}}; // 0 .. 500 and 500 .. 2500 of the output
    for (const Case &c : {
             Case{"before any input", {}, 1000, 0},
             Case{"the start", two, 0, 0},
             Case{"inside the first stretch", two, 250, 500},
             Case{"the end of a stretch belongs to it", two, 500, 1000},
             Case{"just after it, truncated", two, 501, 1000},
             Case{"inside the second stretch", two, 1500, 1500},
             Case{"the end", two, 2500, 2000},
             Case{"after the end the last stretch goes on", two, 3000, 2250},
             Case{"before the start the first one does", two, -3, -6},
             Case{"a speed announced with no samples", {{1000, 2.0f}, {0, 3.0f}}, 600, 1300},
             Case{"empty calls before the input", {{0, 3.0f}, {0, 0.5f}, {1000, 2.0f}}, 100, 200},
             Case{"position 0 falls to the first of them", {{0, 3.0f}, {1000, 2.0f}}, 0, 0},
             Case{"far below", {{1000, 1.0f}}, -3000000000, INT32_MIN},
             Case{"far above", {{1000, 1.0f}}, 3000000000, INT32_MAX},
             Case{"the lowest position", two, INT64_MIN, INT32_MIN},
             Case{"the highest position", two, INT64_MAX, INT32_MAX},
             Case{"the lowest after a stretch that ends below 0", {{1000, -1.0f}}, INT64_MIN, INT32_MAX},
             Case{"the highest after a stretch that ends below 0",
                  {{1000, -1.0f}, {10, 1.0f}},
                  INT64_MAX,
                  INT32_MAX},
             Case{"speed 0: the stretch never ends", {{1000, 0.0f}}, 500, 0},
             Case{"not-a-number", {{1000, std::numeric_limits<float>::quiet_NaN()}}, 500, 0},
             Case{"infinite speed", {{1000, infinity}}, 500, INT32_MAX},
             Case{"infinite speed at the start", {{1000, infinity}}, 0, 0},
             Case{"negative infinite speed", {{1000, -infinity}}, 500, INT32_MIN},
             Case{"single precision: 16777217 is no float", {{10, 1.0f}}, 16777217, 16777216},
         })
        EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(fed(c.pushes).get(), c.position), c.expected) << c.what;
}

TEST(SolafsCursor, ManySmallCallsLoseMoreThanOneLarge)
{
    // 10 samples at speed 3.0 last 3 samples of output; single ones last 0 each, and the second stretch
    // begins at 0.
    const SolafsHandle large = fed({{10, 3.0f}, {100, 1.0f}});
    const SolafsHandle small = fed({{1, 3.0f},
                                    {1, 3.0f},
                                    {1, 3.0f},
                                    {1, 3.0f},
                                    {1, 3.0f},
                                    {1, 3.0f},
                                    {1, 3.0f},
                                    {1, 3.0f},
                                    {1, 3.0f},
                                    {1, 3.0f},
                                    {100, 1.0f}});
    EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(large.get(), 50), 50 - 3 + 10);
    EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(small.get(), 50), 50 + 10);
}

TEST(SolafsCursor, WholeTimelineEqualsThePlainForm)
{
    support::Random random;
    const std::vector<float> samples = random.noise(3000);
    for (int round = 0; round < 2; ++round) {
        ScalerPair pair(20, 16000);
        double length = 0.0;
        for (int step = 0; step < 25; ++step) {
            const auto speed = static_cast<float>(random.real(0.5, 3.0));
            const auto count = static_cast<size_t>(random.integer(0, 3000));
            for (int part = 0; part < 3; ++part) {
                length += pair.input(std::span<const float>(samples).first(count), speed) /
                          static_cast<double>(speed);
                pair.output(1 << 16);
            }
        }
        EXPECT_GT(length, 10000.0);
        for (int64_t position = -1000; position < static_cast<int64_t>(length) + 2000; position += 13)
            pair.cursor(position);
    }
}

TEST(SolafsSegments, AFullTableExtendsItsLastEntry)
{
    // Entry k is 10 samples at speed 1 + k / 256, k = 0 .. 255, so each lasts from 5 to 10 samples of output.
    const auto speedOf = [](int k) { return 1.0f + static_cast<float>(k) / 256.0f; };
    std::vector<Push> pushes;
    for (int k = 0; k < 256; ++k)
        pushes.push_back({10, speedOf(k)});
    const int64_t end = [&] {
        int32_t position = 0;
        for (int k = 0; k < 256; ++k)
            position = static_cast<int32_t>(static_cast<float>(position) + 10.0f / speedOf(k));
        return position;
    }();
    // 2550 is the input position at the last entry's start.
    const auto atLast = [&](int64_t beyond) {
        const auto distance = static_cast<float>(beyond + 5);
        return static_cast<int64_t>(distance * speedOf(255) + 2550.0f);
    };
    const SolafsHandle full = fed(pushes);
    EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(full.get(), end + 100), atLast(100));

    // Neither further speeds nor their number leave a trace but the samples.
    for (int k = 0; k < 300; ++k)
        pushes.push_back({5, 3.0f + static_cast<float>(k)});
    const SolafsHandle over = fed(pushes);
    for (const int64_t beyond : {int64_t{1}, int64_t{100}, int64_t{1000}})
        EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(over.get(), end + beyond), atLast(beyond));
}

TEST(SolafsSegments, AFullTableKeepsItsLastSpeedInTheOutput)
{
    ScalerPair pair(20, 16000);
    support::Random random;
    const std::vector<float> samples = random.noise(200);
    for (int k = 0; k < 300; ++k) {
        pair.input(samples, k % 2 == 0 ? 1.5f : 0.75f);
        while (pair.output(4000) > 0) {
        }
    }
    EXPECT_EQ(pair.plain.speedInForce(), 0.75f); // that of entry 255; the last one pushed was 0.75 too
    for (int k = 0; k < 20; ++k) {
        pair.input(samples, 2.5f);
        while (pair.output(4000) > 0) {
        }
    }
    EXPECT_EQ(pair.plain.speedInForce(), 0.75f);
    for (int64_t position = 0; position < 70000; position += 101)
        pair.cursor(position);
}

TEST(SolafsSegments, OnAFreshRecordAFullTableTakesTheNewSpeed)
{
    std::vector<Push> pushes(300, {0, 1.0f});
    pushes.push_back({1000, 2.0f});
    pushes.push_back({1000, 0.5f}); // not taken up any more
    EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(fed(pushes).get(), 100), 200);
    EXPECT_EQ(ORVA_SolafsTranslateCursorPosition(fed(pushes).get(), 900), 1800);
}
