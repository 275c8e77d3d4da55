// Refusals, names, application and gains.
#include "support/bits.h"
#include "support/folder.h"
#include "support/log.h"
#include "support/pattern.h"
#include "support/random.h"
#include "window/definitions.h"

#include <orva/orva.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using support::bitsOf;
using support::sameBits;

TEST(CreateWindow, RefusesANullBufferBeforeItLooksAtTheType)
{
    for (int32_t type : {0, 3, unknownType, -1})
        for (uint32_t length : {0u, 16u, 4294967295u})
            EXPECT_FALSE(ORVA_CreateWindow(type, nullptr, length));
}

TEST(CreateWindow, RefusesAnUnknownTypeAndLeavesTheBuffer)
{
    for (int32_t type : {unknownType, -1, 128, INT32_MAX, INT32_MIN}) {
        std::vector<float> samples(8, 77.0f);
        EXPECT_FALSE(ORVA_CreateWindow(type, samples.data(), 8)) << type;
        EXPECT_EQ(samples, std::vector<float>(8, 77.0f)) << type;
    }
}

TEST(CreateWindow, LogsNothing)
{
    support::Log log;
    float sample = 0.0f;
    ORVA_CreateWindow(3, nullptr, 4);
    ORVA_CreateWindow(-1, &sample, 1);
    ORVA_GetWindowName(-1);
    ORVA_GetWindowType("no such window");
    ORVA_GetWindowTypeFromStringConfig("w=none", "w", 99);
    EXPECT_TRUE(log.messages.empty());
}

TEST(ApplyWindow, MultipliesTheSecondVectorInPlace)
{
    support::Random random;
    for (int32_t length : {1, 2, 3, 4, 7, 64, 1023}) {
        const auto size = static_cast<size_t>(length);
        const auto window = random.noise(size);
        auto data = random.noise(size + 1);
        const auto before = data;
        EXPECT_TRUE(ORVA_ApplyWindow(window.data(), data.data(), length));
        for (size_t i = 0; i < size; ++i)
            ASSERT_EQ(bitsOf(data[i]), bitsOf(before[i] * window[i]));
        EXPECT_EQ(data[size], before[size]);
    }
}

TEST(ApplyWindow, ToItselfSquares)
{
    std::vector<float> window{0.5f, -3.0f, 1.5f, 2.0f, 0.25f};
    EXPECT_TRUE(ORVA_ApplyWindow(window.data(), window.data(), 5));
    EXPECT_EQ(window, (std::vector<float>{0.25f, 9.0f, 2.25f, 4.0f, 0.0625f}));
}

TEST(ApplyWindow, LengthOfZeroOrBelowDoesNothing)
{
    const std::vector<float> window(4, 0.5f);
    for (int32_t length : {0, -1, INT32_MIN}) {
        std::vector<float> data(4, 8.0f);
        EXPECT_TRUE(ORVA_ApplyWindow(window.data(), data.data(), length));
        EXPECT_EQ(data, std::vector<float>(4, 8.0f));
        EXPECT_TRUE(ORVA_ApplyWindow(nullptr, nullptr, length));
    }
}

TEST(WindowName, BelongsToItsType)
{
    for (const auto &window : definitions) {
        const char *const name = ORVA_GetWindowName(window.type);
        EXPECT_STREQ(name, window.name);
        EXPECT_EQ(name, ORVA_GetWindowName(window.type)) << "the text is constant";
        EXPECT_EQ(ORVA_GetWindowType(window.name), window.type);
    }
    for (int32_t unknown : {-1, unknownType, INT32_MAX, INT32_MIN})
        EXPECT_EQ(ORVA_GetWindowName(unknown), nullptr);
}

// The rows of the header's table: " *      3     Hanning             N - 1  ...".
TEST(WindowName, StandsInTheTableOfTheHeader)
{
    const support::Pattern row(R"( \*      ([0-9]+) +([A-Z][A-Za-z-]+) +.*)");
    std::istringstream header(support::readFile(ORVA_WINDOW_HEADER));
    int32_t type = 0;
    for (std::string line; std::getline(header, line);)
        if (const auto groups = row.match(line)) {
            EXPECT_EQ((*groups)[1], std::to_string(type)) << line;
            EXPECT_EQ((*groups)[2], ORVA_GetWindowName(type)) << line;
            ++type;
        }
    EXPECT_EQ(type, unknownType) << "rows in the table";
}

TEST(WindowType, ComparesWholeNamesWithoutRegardToCase)
{
    const struct {
        const char *name;
        int32_t type;
    } rows[] = {
        {"hamming", 5},
        {"HANNING-PERIODIC", 4},
        {"hAnNiNg", 3},
        {"flat-top", 10},
        {"Hann", 0},
        {"Hanning-", 0},
        {"Hanning-Periodic ", 0},
        {" Hanning", 0},
        {"Nuttall", 0},
        {"Blackman_Harris", 0},
        {"", 0},
        {nullptr, 0},
    };
    for (const auto &row : rows)
        EXPECT_EQ(ORVA_GetWindowType(row.name), row.type) << (row.name != nullptr ? row.name : "null");
    EXPECT_EQ(ORVA_GetWindowType(("Hanning" + std::string(1000, 'x')).c_str()), 0);
}

TEST(WindowTypeFromConfig, FallsBackToTheDefaultOnlyWhereTheKeyIsAbsent)
{
    const struct {
        const char *config;
        const char *key;
        int32_t defaultType;
        int32_t type;
    } rows[] = {
        {"other=1", "window", 5, 5},
        {"", "window", 10, 10},
        {nullptr, "window", 3, 3},
        {"window=hamming", nullptr, 3, 3},
        {"window=hamming", "Window", 3, 3},
        {"window=hamming", "window", 3, 5},
        {"fs=8000; window = Blackman-Harris, n=4", "window", 3, 7},
        {"window=\"hanning-periodic\"", "window", 0, 4},
        {"window=hanning window=nuttal", "window", 0, 9},
        {"window=Kaiser", "window", 5, 0},
        {"window=Nuttall", "window", 5, 0},
        {"window=\"\"", "window", 5, 0},
        {"other=1", "window", unknownType, unknownType},
        {"other=1", "window", -7, -7},
        {"window=hamming", "window", -7, 5},
        {"window=Kaiser", "window", -7, 0},
    };
    for (const auto &row : rows)
        EXPECT_EQ(ORVA_GetWindowTypeFromStringConfig(row.config, row.key, row.defaultType), row.type)
            << (row.config != nullptr ? row.config : "null") << ", default " << row.defaultType;
}

TEST(WindowTypeFromConfig, ALongNameIsNoWindow)
{
    const std::string name = "Hamming" + std::string(500, ' ');
    EXPECT_EQ(ORVA_GetWindowTypeFromStringConfig(("w=\"" + name + "\"").c_str(), "w", 3), 0);
    EXPECT_EQ(ORVA_GetWindowTypeFromStringConfig(("w=" + std::string(100000, 'h')).c_str(), "w", 3), 0);
}

TEST(WindowNormFactor, IsTheMeanSummedInDouble)
{
    support::Random random;
    for (int32_t length : {1, 2, 5, 64, 4097}) {
        const auto a = random.noise(static_cast<size_t>(length)),
                   b = random.noise(static_cast<size_t>(length));
        double sum = 0.0, productSum = 0.0;
        for (size_t i = 0; i < a.size(); ++i) {
            sum = sum + static_cast<double>(a[i]);
            const float product = a[i] * b[i];
            productSum = productSum + static_cast<double>(product);
        }
        EXPECT_EQ(bitsOf(ORVA_GetWindowNormFactor(a.data(), length)), bitsOf(sum / length));
        EXPECT_EQ(bitsOf(ORVA_GetTwoWindowNormFactor(a.data(), b.data(), length)),
                  bitsOf(productSum / length));
    }
}

TEST(WindowNormFactor, OfRectangularIsOne)
{
    for (uint32_t length : {1u, 2u, 7u, 1000u, 1024u}) {
        std::vector<float> window(length);
        ORVA_CreateWindow(0, window.data(), length);
        EXPECT_EQ(ORVA_GetWindowNormFactor(window.data(), static_cast<int32_t>(length)), 1.0);
        EXPECT_EQ(ORVA_GetTwoWindowNormFactor(window.data(), window.data(), static_cast<int32_t>(length)),
                  1.0);
    }
}

TEST(WindowNormFactor, OfAPeriodicHanningIsItsConstantTerm)
{
    std::vector<float> window(512);
    ORVA_CreateWindow(4, window.data(), 512);
    EXPECT_NEAR(ORVA_GetWindowNormFactor(window.data(), 512), 0.5, 1e-8);
    EXPECT_NEAR(ORVA_GetTwoWindowNormFactor(window.data(), window.data(), 512), 0.375, 1e-8);
}

TEST(WindowNormFactor, TheProductIsRoundedToFloat)
{
    const float x = 1.0f + 0x1p-23f; // its square needs 47 bits
    const float product = x * x;
    EXPECT_EQ(ORVA_GetTwoWindowNormFactor(&x, &x, 1), static_cast<double>(product));
    EXPECT_NE(ORVA_GetTwoWindowNormFactor(&x, &x, 1), static_cast<double>(x) * static_cast<double>(x));
}

TEST(WindowNormFactor, OfNullIsZeroWhateverTheLength)
{
    const float one = 1.0f;
    for (int32_t length : {1, 0, -1, 100, INT32_MIN}) {
        EXPECT_EQ(bitsOf(ORVA_GetWindowNormFactor(nullptr, length)), bitsOf(0.0));
        EXPECT_EQ(bitsOf(ORVA_GetTwoWindowNormFactor(nullptr, &one, length)), bitsOf(0.0));
        EXPECT_EQ(bitsOf(ORVA_GetTwoWindowNormFactor(&one, nullptr, length)), bitsOf(0.0));
        EXPECT_EQ(bitsOf(ORVA_GetTwoWindowNormFactor(nullptr, nullptr, length)), bitsOf(0.0));
    }
}

TEST(WindowNormFactor, OfNoSamplesIsStillDivided)
{
    const float one = 1.0f;
    EXPECT_TRUE(std::isnan(ORVA_GetWindowNormFactor(&one, 0)));
    EXPECT_TRUE(std::isnan(ORVA_GetTwoWindowNormFactor(&one, &one, 0)));
    for (int32_t length : {-1, INT32_MIN}) {
        EXPECT_EQ(bitsOf(ORVA_GetWindowNormFactor(&one, length)), bitsOf(-0.0));
        EXPECT_EQ(bitsOf(ORVA_GetTwoWindowNormFactor(&one, &one, length)), bitsOf(-0.0));
    }
}
