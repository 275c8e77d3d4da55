// Band edges: their scale, their order, and the selectivity that they give.
#include "filter/ORVAfilter_request.h"
#include "support/bits.h"
#include "support/log.h"
#include "support/random.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace orva;

using support::error;
using support::Log;
using support::Message;
using support::sameBits;

namespace
{

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr const char *scaleMessage = "ORVA_CreateFilter: If you want to specify frequencies in Hz, you must "
                                     "specify a sampling frequency.";
constexpr const char *cutoffMessage = "ORVA_CreateFilter: You must specify a cutoff frequency (fpass)";
constexpr const char *bandMessage =
    "ORVA_CreateFilter: You must specify two cutoff frequences (fpass1 and fpass2)";

std::vector<Message> messagesOf(const char *text)
{
    return text != nullptr ? std::vector<Message>{error(text)} : std::vector<Message>{};
}

std::vector<float> values(const Edges &edges)
{
    return {edges.fpass1, edges.fpass2, edges.fstop1, edges.fstop2};
}

// The result of a measurement, or -2 for a refusal.
float measured(int32_t kind, const Edges &edges)
{
    float ws = 77.0f;
    return measureSelectivity(kind, edges, ws) ? ws : -2.0f;
}

} // namespace

TEST(FrequencyScale, NeedsASamplingRateFromAPassbandEdgeOfOneOn)
{
    const float below = std::nextafter(1.0f, 0.0f);
    const struct {
        Edges edges;
        bool isRefused;
    } rows[] = {
        {{1000, -1, -1, -1}, true}, {{1, -1, -1, -1}, true},       {{-1, 1, -1, -1}, true},
        {{0.5f, 1, -1, -1}, true},  {{0.999f, -1, -1, -1}, false}, {{below, below, 1.5f, 1000}, false},
        {{0.5f, -1, 1, 1}, false},  {{-1, -1, -1, -1}, false},
    };
    for (const auto &row : rows)
        for (int32_t rate : {-1, -44100, std::numeric_limits<int32_t>::min(), 0}) {
            const Log log;
            Edges edges = row.edges;
            EXPECT_EQ(normaliseEdges(edges, rate), !row.isRefused);
            EXPECT_EQ(log.messages, messagesOf(row.isRefused ? scaleMessage : nullptr));
            if (rate < 0 || row.isRefused) {
                EXPECT_TRUE(sameBits(values(edges), values(row.edges))) << "normalised already";
            }
        }
}

TEST(FrequencyScale, DividesInDoubleAndRoundsOnce)
{
    Edges edges = {1000, 2000, -1, -0.5f};
    ASSERT_TRUE(normaliseEdges(edges, 44100));
    EXPECT_EQ(edges.fpass1, 0.04535147547721863f);
    EXPECT_EQ(edges.fpass2, static_cast<float>(4000.0 / 44100.0));
    EXPECT_EQ(edges.fstop1, -1.0f) << "missing stays missing";
    EXPECT_EQ(edges.fstop2, -0.5f);
    support::Random random;
    for (int repeat = 0; repeat < 10000; ++repeat) {
        const auto f = static_cast<float>(random.real(0.0, 100000.0));
        const auto rate = static_cast<int32_t>(random.integer(1, 200000));
        Edges any = {f, 0.0f, -f, f};
        ASSERT_TRUE(normaliseEdges(any, rate));
        const auto expected = static_cast<float>(2.0 * static_cast<double>(f) / static_cast<double>(rate));
        ASSERT_TRUE(sameBits(values(any), {expected, 0.0f, -f, expected})) << f << " of " << rate;
    }
}

TEST(FrequencyScale, OfARateOfZeroMakesEdgesInfinite)
{
    Edges edges = {0.5f, -1, 0.25f, 3};
    ASSERT_TRUE(normaliseEdges(edges, 0));
    EXPECT_TRUE(sameBits(values(edges), {infinity, -1, infinity, infinity}));
    Edges atZero = {0.0f, -1, -1, -1};
    ASSERT_TRUE(normaliseEdges(atZero, 0));
    EXPECT_TRUE(std::isnan(atZero.fpass1));
}

TEST(Selectivity, IsTheRatioOfTheEdges)
{
    EXPECT_EQ(measured(lowPass, {0.3f, -1, 0.6f, -1}), 2.0f);
    EXPECT_EQ(measured(highPass, {0.6f, -1, 0.3f, -1}), 2.0f);
    EXPECT_EQ(measured(lowPass, {0.3f, -1, 0.7f, -1}), 0.7f / 0.3f) << "in single precision";
    for (int32_t kind : {lowPass, highPass})
        for (float s1 : {-1.0f, 0.0f})
            EXPECT_EQ(measured(kind, {0.3f, -1, s1, 0.9f}), -1.0f) << "no stop edge";
    EXPECT_EQ(measured(lowPass, {0.3f, 0.1f, -1, 0.1f}), -1.0f) << "the second edges are not looked at";
}

TEST(Selectivity, OfABandTakesTheNearerEdgeAndItsMirror)
{
    // Exact in float: 1/8 and 3/8 are the passband edges, 1/4 the centre.
    const struct {
        int32_t kind;
        float s1, s2, ws;
    } rows[] = {
        {bandPass, -1, -1, -1},
        {bandPass, 0, 0, -1},
        {bandPass, 0.0625f, -1, 1.5f},
        {bandPass, -1, 0.5f, 2.0f},
        {bandPass, 0.0625f, 0.5f, 1.5f},       // the lower is nearer
        {bandPass, 0.03125f, 0.40625f, 1.25f}, // the upper
        {bandPass, 0.0625f, 0.4375f, 1.5f},    // alike
        {bandReject, -1, -1, -1},
        {bandReject, 0.1875f, -1, 2.0f},
        {bandReject, -1, 0.28125f, 4.0f},
        {bandReject, 0.1875f, 0.28125f, 2.0f},
        {bandReject, 0.21875f, 0.3125f, 2.0f},
        {bandReject, 0.1875f, 0.3125f, 2.0f},
        {bandReject, 0.25f, -1, infinity}, // at the centre: no width
        {bandReject, 0.3125f, -1, -2.0f},  // beyond it
    };
    for (const auto &row : rows) {
        float ws = 0.0f;
        ASSERT_TRUE(measureSelectivity(row.kind, {0.125f, 0.375f, row.s1, row.s2}, ws));
        EXPECT_EQ(ws, row.ws) << row.kind << ": " << row.s1 << ", " << row.s2;
    }
}

TEST(Selectivity, OfABandHasTheGroupingsOfTheDefinition)
{
    support::Random random;
    for (int repeat = 0; repeat < 20000; ++repeat) {
        float f[4];
        for (float &x : f)
            x = static_cast<float>(random.real(0.01, 0.99));
        std::sort(std::begin(f), std::end(f));
        if (f[0] == f[1] || f[1] == f[2] || f[2] == f[3])
            continue;
        for (const bool isPass : {true, false}) {
            const float p1 = isPass ? f[1] : f[0], p2 = isPass ? f[2] : f[3];
            const float s1 = isPass ? f[0] : f[1], s2 = isPass ? f[3] : f[2];
            const float width = p2 - p1;
            float byFirst, bySecond, ofFirst, ofSecond;
            if (isPass) {
                byFirst = p1 + p2;
                byFirst = byFirst - s1;
                byFirst = (byFirst - s1) / width;
                bySecond = p1 - s2;
                bySecond = bySecond + p2;
                bySecond = (s2 - bySecond) / width;
                ofFirst = p1 - s1;
                ofSecond = s2 - p2;
            } else {
                byFirst = p2 - s1;
                byFirst = byFirst + p1;
                byFirst = width / (byFirst - s1);
                bySecond = p1 + p2;
                bySecond = bySecond - s2;
                bySecond = width / (s2 - bySecond);
                ofFirst = s1 - p1;
                ofSecond = p2 - s2;
            }
            const int32_t kind = isPass ? bandPass : bandReject;
            ASSERT_TRUE(sameBits(measured(kind, {p1, p2, s1, -1}), byFirst));
            ASSERT_TRUE(sameBits(measured(kind, {p1, p2, 0, s2}), bySecond));
            ASSERT_TRUE(sameBits(measured(kind, {p1, p2, s1, s2}), ofFirst < ofSecond ? byFirst : bySecond));
        }
    }
}

TEST(Selectivity, RefusesEdgesThatAreMissingZeroOrOutOfOrder)
{
    const struct {
        int32_t kind;
        Edges edges;
        const char *text;
    } rows[] = {
        {lowPass, {-1, 0.5f, 0.5f, -1}, cutoffMessage},
        {highPass, {-0.1f, 0.5f, 0.5f, -1}, cutoffMessage},
        {lowPass, {0, -1, 0.5f, -1}, nullptr},
        {highPass, {0, -1, -1, -1}, nullptr},
        {lowPass, {0.5f, -1, 0.5f, -1}, nullptr},
        {lowPass, {0.5f, -1, 0.4f, -1}, nullptr},
        {highPass, {0.5f, -1, 0.5f, -1}, nullptr},
        {highPass, {0.5f, -1, 0.6f, -1}, nullptr},
        {lowPass, {infinity, -1, infinity, -1}, nullptr},
        {bandPass, {-1, 0.5f, -1, -1}, bandMessage},
        {bandPass, {0.5f, -1, -1, -1}, bandMessage},
        {bandPass, {0, -1, -1, -1}, bandMessage},
        {bandReject, {-1, 0, -1, -1}, bandMessage},
        {bandReject, {-1, -1, -1, -1}, bandMessage},
        {bandPass, {0, 0.5f, -1, -1}, nullptr},
        {bandReject, {0.5f, 0, -1, -1}, nullptr},
        {bandPass, {0.5f, 0.5f, -1, -1}, nullptr},
        {bandReject, {0.6f, 0.5f, -1, -1}, nullptr},
        {bandPass, {0.2f, 0.4f, 0.2f, -1}, nullptr},
        {bandPass, {0.2f, 0.4f, 0.3f, -1}, nullptr},
        {bandPass, {0.2f, 0.4f, -1, 0.4f}, nullptr},
        {bandPass, {0.2f, 0.4f, 0.1f, 0.3f}, nullptr},
        {bandPass, {0.2f, 0.4f, 0.5f, 0.45f}, nullptr},
        {bandReject, {0.2f, 0.4f, 0.2f, -1}, nullptr},
        {bandReject, {0.2f, 0.4f, 0.1f, -1}, nullptr},
        {bandReject, {0.2f, 0.4f, -1, 0.4f}, nullptr},
        {bandReject, {0.2f, 0.4f, 0.25f, 0.5f}, nullptr},
        {bandReject, {0.2f, 0.4f, 0.3f, 0.3f}, nullptr},
        {bandReject, {0.2f, 0.4f, 0.35f, 0.25f}, nullptr},
    };
    for (size_t i = 0; i < std::size(rows); ++i) {
        const Log log;
        float ws = 77.0f;
        EXPECT_FALSE(measureSelectivity(rows[i].kind, rows[i].edges, ws)) << "row " << i;
        EXPECT_EQ(log.messages, messagesOf(rows[i].text)) << "row " << i;
    }
}
