// Root lists to sections, and the whole way from a text to sections.
#include "common/numbers.h"
#include "filter/ORVAfilter_design.h"
#include "filter/ORVAfilter_design_reference.h"
#include "filter/ORVAfilter_designed.h"
#include "support/bits.h"
#include "support/log.h"

#include <array>
#include <limits>

using namespace orva;

using support::error;
using support::Log;
using support::Message;
using support::sameBits;

namespace
{

testing::AssertionResult near(const std::vector<double> &records, const std::vector<double> &expected,
                              double tolerance)
{
    if (records.size() != expected.size())
        return testing::AssertionFailure() << records.size() << " values instead of " << expected.size();
    for (size_t i = 0; i < records.size(); ++i)
        if (!(std::fabs(records[i] - expected[i]) <= tolerance))
            return testing::AssertionFailure() << std::setprecision(17) << "value " << i << ": " << records[i]
                                               << " instead of " << expected[i];
    return testing::AssertionSuccess();
}

Filter sectionsOf(const std::vector<Root> &poles, const std::vector<Root> &zeros, int32_t rootCount,
                  double designGain = 1.0, float gain = 1.0f)
{
    return Filter(_MakeFilterFromRoots(rootCount, poles.data(), zeros.data(), designGain, gain, 2, 3));
}

} // namespace

TEST(FilterSections, AreTheWorkedOnes)
{
    const double low = 0.178172128;
    const double high = 0.589093326;
    const struct {
        const char *text;
        std::vector<double> records;
    } rows[] = {
        {"order=2 fpass=0.25", {-0.941753346, 0.332960323, 0.097801744, 0.195603489, 0.097801744}},
        {"order=3 fpass=0.25",
         {-1.044077787, 0.477376275, low, 0.356344256, low, -0.413885661, 0.0, low, low, 0.0}},
        {"order=4 fpass=0.25 type=highpass",
         {-1.113596406, 0.574202640, high, -1.178186652, high, -0.855898800, 0.209916037, high, -1.178186652,
          high}},
    };
    for (const auto &row : rows)
        EXPECT_TRUE(near(recordsOf(create(row.text)), row.records, 6e-10)) << row.text;
}

TEST(FilterSections, OfTheWorkedFiltersHaveTheirGainsAndAttenuations)
{
    for (const char *text : {"order=2 fpass=0.25", "order=3 fpass=0.25"}) {
        const auto records = recordsOf(create(text));
        EXPECT_NEAR(attenuation(records, 0.0), 0.0, 1e-12) << text;
        EXPECT_NEAR(attenuation(records, 0.25), 3.0, 1e-6) << text;
    }
    const auto records = recordsOf(create("order=4 fpass=0.25 type=hp"));
    EXPECT_NEAR(attenuation(records, 1.0), 0.0, 1e-12);
    EXPECT_NEAR(attenuation(records, 0.25), 3.0, 1e-6);
}

TEST(FilterSections, HoldTheZerosAtMinusOneOrOneAsPairs)
{
    for (int order = 2; order <= 12; order += 2)
        for (const bool isHigh : {false, true}) {
            const auto records = recordsOf(
                create("order=" + std::to_string(order) + " fpass=0.3 type=" + (isHigh ? "hp" : "lp")));
            ASSERT_EQ(records.size(), static_cast<size_t>(order / 2 * 5));
            for (size_t i = 0; i < records.size(); i += 5) {
                const double g = records[2];
                EXPECT_EQ(records[i + 2], g) << "the same in every section";
                EXPECT_NEAR(records[i + 3], isHigh ? -2.0 * g : 2.0 * g, 1e-15);
                EXPECT_NEAR(records[i + 4], g, 1e-15);
            }
        }
}

TEST(FilterSections, OfAnOddOrderEndInOneOfFirstOrder)
{
    for (int order = 1; order <= 11; order += 2) {
        const auto records = recordsOf(create("order=" + std::to_string(order) + " fpass=0.3"));
        ASSERT_EQ(records.size(), static_cast<size_t>((order + 1) / 2 * 5));
        for (size_t i = 0; i < records.size(); i += 5) {
            const bool isLast = i + 5 == records.size();
            EXPECT_EQ(records[i + 1] == 0.0, isLast) << order;
            EXPECT_EQ(records[i + 4] == 0.0, isLast) << order;
        }
        EXPECT_EQ(records.back(), 0.0);
        EXPECT_EQ(records[records.size() - 3], records[2]) << "the gain of the others";
    }
}

TEST(FilterGain, IsSpreadEvenlyOverTheSections)
{
    const auto plain = recordsOf(create("order=4 fpass=0.25"));
    auto doubled = recordsOf(create("order=4 fpass=0.25 gain=2"));
    EXPECT_NEAR(attenuation(doubled, 0.1), attenuation(plain, 0.1) - 20.0 * std::log10(2.0), 1e-12);
    for (size_t i = 0; i < doubled.size(); i += 5)
        for (size_t b : {2, 3, 4})
            doubled[i + b] /= std::sqrt(2.0);
    EXPECT_TRUE(near(doubled, plain, 1e-15));
}

TEST(FilterGain, OfZeroIsSilence)
{
    const Filter filter = create("order=3 fpass=0.25 gain=0");
    const auto records = recordsOf(filter);
    for (size_t i = 0; i < records.size(); i += 5)
        for (size_t b : {2, 3, 4})
            EXPECT_EQ(records[i + b], 0.0);
    support::Random random;
    auto block = random.noise(64);
    ASSERT_EQ(ORVA_Filter(filter.get(), block.data(), block.data(), 64), 1);
    EXPECT_EQ(std::count(block.begin(), block.end(), 0.0f), 64);
}

TEST(FilterGain, BelowZeroKeepsItsSignInOneSectionAndIsNotANumberInMore)
{
    const Log log;
    const auto plain = recordsOf(create("order=2 fpass=0.25"));
    auto turned = recordsOf(create("order=2 fpass=0.25 gain=-1"));
    for (size_t b : {2, 3, 4})
        turned.at(b) = -turned[b];
    EXPECT_TRUE(sameBits(turned, plain));

    const Filter filter = create("order=3 fpass=0.25 gain=-1");
    ASSERT_NE(filter, nullptr);
    std::vector<float> block(16, 1.0f);
    ASSERT_EQ(ORVA_Filter(filter.get(), block.data(), block.data(), 16), 1);
    for (float x : block)
        EXPECT_TRUE(std::isnan(x));
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(FilterCutoff, BetweenOneAndTwoIsThatOfItsMirror)
{
    const struct {
        const char *beyond, *mirror;
    } rows[] = {{"fpass=6 fs=8", "fpass=0.5"},  // 1.5
                {"fpass=7 fs=8", "fpass=0.25"}, // 1.75
                {"fpass=9 fs=8", "fpass=0.25"}, // 2.25: the pattern repeats
                {"fpass=15 fs=8", "fpass=0.25"}};
    for (const char *type : {" order=4 type=lp", " order=4 type=hp", " order=5 type=lp"})
        for (const auto &row : rows)
            EXPECT_TRUE(near(recordsOf(create(std::string(row.beyond) + type)),
                             recordsOf(create(std::string(row.mirror) + type)), 1e-9))
                << row.beyond << type;
}

TEST(FilterCutoff, OfOneOrTwoGathersThePolesInOnePoint)
{
    const Log log;
    for (const char *type : {"lp", "hp"})
        for (const double point : {-1.0, 1.0}) {
            const auto records = recordsOf(
                create(std::string("order=4 fs=8 fpass=") + (point < 0 ? "4" : "8") + " type=" + type));
            ASSERT_EQ(records.size(), 10u);
            for (size_t i = 0; i < records.size(); i += 5) {
                EXPECT_NEAR(records[i], -2.0 * point, 1e-6) << type;
                EXPECT_NEAR(records[i + 1], 1.0, 1e-6) << type;
            }
        }
    EXPECT_EQ(log.messages, std::vector<Message>{});
}

TEST(MakeFilterFromRoots, TakesUnitsInListOrder)
{
    const std::vector<Root> poles = {{0.5, 0.25}, {0.5, 0.0}, {-0.25, 0.0}, {0.125, -0.5}, {0.75, 0.0}};
    const std::vector<Root> zeros = {{1.0, 0.0},  {-0.5, 0.0}, {0.0, 1.0},
                                     {0.25, 0.0}, {0.5, 0.0},  {-1.0, -0.0}};
    const Filter filter = sectionsOf(poles, zeros, 7, 8.0, 2.0f);              // four sections of gain 2
    EXPECT_TRUE(sameBits(recordsOf(filter), {-1.0,  0.3125,   2.0, -1.0, -1.0, //
                                             -0.25, -0.125,   2.0, -0.0, 2.0,  //
                                             -0.25, 0.265625, 2.0, -1.5, 0.25, //
                                             -0.75, 0.0,      2.0, 2.0,  0.0}));
    EXPECT_EQ(filter->numChannels, 2);
    EXPECT_EQ(filter->kind, 3);
    EXPECT_EQ(filter->filterFn, _DFIISOSfilter);
    EXPECT_EQ(filter->resetFn, _DFIISOSreset);
    EXPECT_EQ(filter->copyMemFn, _DFIISOScopyMem);
    EXPECT_EQ(cascadeOf(filter)->numBiquads, 4);
    EXPECT_EQ(cascadeOf(filter)->allocatedBiquads, 0);
    EXPECT_EQ(cascadeOf(filter)->position, 0);
    for (int i = 0; i < 4 * 4 * 2; ++i)
        EXPECT_EQ(cascadeOf(filter)->memory[i], 0.0);
}

TEST(MakeFilterFromRoots, ReportsRootsThatDoNotPair)
{
    const Root real = {0.5, 0.0};
    const Root pair = {0.5, 0.5};
    const Root none = {0.5, std::numeric_limits<double>::quiet_NaN()};
    const char *const unpairedPoles = "_MakeFilterFromRoots: Unpaired real poles";
    const char *const unpairedZeros = "_MakeFilterFromRoots: Unpaired real zeros";
    const char *const unpairedLast = "_MakeFilterFromRoots: Unpaired imaginary root";
    const struct {
        std::vector<Root> poles, zeros;
        int32_t rootCount;
        const char *text; // null: they pair
    } rows[] = {
        {{real, pair}, {pair, pair}, 2, unpairedPoles},
        {{pair, pair}, {real, pair}, 2, unpairedZeros},
        {{real, pair}, {real, pair}, 2, unpairedPoles},
        {{real, none}, {pair, pair}, 2, unpairedPoles},
        {{pair, real, pair}, {real, none, pair}, 4, unpairedZeros}, // the first section's fault comes first
        {{pair, real, pair}, {pair, pair, pair}, 4, unpairedPoles},
        {{pair, pair}, {pair, real}, 3, unpairedLast},
        {{pair, real}, {pair, pair}, 3, unpairedLast},
        {{pair}, {real}, 1, unpairedLast},
        {{none}, {real}, 1, unpairedLast},
        {{none, none}, {pair, pair}, 2, nullptr}, // not-a-number is no real root
        {{pair, real}, {real, real, real}, 3, nullptr},
    };
    for (const auto &row : rows) {
        const Log log;
        const Filter filter = sectionsOf(row.poles, row.zeros, row.rootCount);
        EXPECT_EQ(filter == nullptr, row.text != nullptr);
        EXPECT_EQ(log.messages,
                  row.text != nullptr ? std::vector<Message>{error(row.text)} : std::vector<Message>{});
    }
}

TEST(MakeFilterFromRoots, PassesGainsOnThatAreNoNumbers)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (double gain : {none, std::numeric_limits<double>::infinity()}) {
        const auto records =
            recordsOf(sectionsOf({{0.5, 0.5}, {0.5, 0.25}}, {{0.0, 1.0}, {0.0, 1.0}}, 4, gain));
        ASSERT_EQ(records.size(), 10u);
        EXPECT_TRUE(sameBits(records[2], gain));
        EXPECT_EQ(records[0], -1.0);
    }
}

// ---- The whole way

namespace
{

constexpr const char *words[] = {"butterworth", "chebyshev", "chebyshev2", "ellip"};
constexpr const char *types[] = {"lowpass", "highpass", "bandpass", "bandreject"};

struct Band {
    float p1, p2;
};

constexpr std::array<Band, 6> bands = {
    {{0.05f, 0.95f}, {0.1f, 0.3f}, {0.25f, 0.26f}, {0.5f, 0.625f}, {0.75f, 0.9f}, {0.9f, 0.95f}}};

// A stop edge that fits, and the selectivity it gives.
struct Stop {
    const char *key;
    float edge;
    float ws;
};

Stop stopOf(int kind, Band b)
{
    const float width = b.p2 - b.p1;
    switch (kind) {
    case 0: {
        const float s = b.p1 * 1.4f;
        return {"fstop", s, s / b.p1};
    }
    case 1: {
        const float s = b.p1 / 1.4f;
        return {"fstop", s, b.p1 / s};
    }
    case 2: {
        const float s = b.p2 + 0.25f * width;
        const float mirror = (b.p1 - s) + b.p2;
        return {"fstop2", s, (s - mirror) / width};
    }
    default: {
        const float s = b.p1 + 0.2f * width;
        const float mirror = (b.p2 - s) + b.p1;
        return {"fstop1", s, width / (mirror - s)};
    }
    }
}

std::string number(float x)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(x));
    return text;
}

std::string textOf(int kind, int approximation, int order, Band band)
{
    return std::string("type=") + types[kind] + " approximation=" + words[approximation] +
           " order=" + std::to_string(order) + " fpass1=" + number(band.p1) + " fpass2=" + number(band.p2);
}

// The frequency of the analogue prototype that ends at f.
double prototypeFrequency(int kind, Band band, double f)
{
    const double w = f * pi;
    const double w1 = static_cast<double>(band.p1) * pi;
    const double w2 = static_cast<double>(band.p2) * pi;
    if (kind < 2) {
        const double ratio = std::tan(w / 2) / std::tan(w1 / 2);
        return kind == 0 ? ratio : 1 / ratio;
    }
    const double centre = std::cos((w1 + w2) / 2) / std::cos((w2 - w1) / 2);
    const double offCentre = std::fabs(centre - std::cos(w)) / std::sin(w);
    const double width = std::tan((w2 - w1) / 2);
    return kind == 2 ? offCentre / width : width / offCentre;
}

// Where the prototype's frequency is `ws`, between the edge p1 and the far end of its stopband.
double stopFrequency(int kind, Band band, double ws)
{
    double near = static_cast<double>(band.p1);
    const double w1 = near * pi;
    const double w2 = static_cast<double>(band.p2) * pi;
    double far = kind == 0 ? 1.0 : 0.0;
    if (kind == 3)
        far = std::acos(std::cos((w1 + w2) / 2) / std::cos((w2 - w1) / 2)) / pi;
    for (int i = 0; i < 100; ++i) {
        const double middle = (near + far) / 2;
        (prototypeFrequency(kind, band, middle) < ws ? near : far) = middle;
    }
    return near;
}

} // namespace

TEST(DesignedFilter, HasTheBitsOfTheDefinition)
{
    for (int kind = 0; kind < 4; ++kind)
        for (int a = 0; a < 4; ++a)
            for (int order = 1; order <= 12; ++order)
                for (const Band band : bands)
                    for (const float As : {0.125f, 50.0f}) {
                        const Stop stop = stopOf(kind, band);
                        const auto text = textOf(kind, a, order, band) + " Ap=1 As=" + number(As) + " " +
                                          stop.key + "=" + number(stop.edge) + " gain=1.5 nc=3";
                        const reference::Demand demand = {static_cast<double>(stop.ws), 1.0,
                                                          static_cast<double>(As)};
                        const auto approximation = static_cast<reference::Approximation>(a);
                        const int finalOrder = std::max(order, reference::estimate(approximation, demand));
                        const auto expected = reference::records(kind, approximation, demand, finalOrder,
                                                                 band.p1, band.p2, 1.5f);
                        const Filter filter = create(text);
                        ASSERT_NE(filter, nullptr) << text;
                        ASSERT_TRUE(sameBits(recordsOf(filter), expected)) << text;
                        ASSERT_EQ(filter->kind, kind) << text;
                        ASSERT_EQ(filter->numChannels, 3) << text;
                        ASSERT_TRUE(isStable(expected)) << text;
                    }
}

TEST(DesignedFilter, HasTheBitsOfTheDefinitionWithoutAStopEdge)
{
    for (int kind = 0; kind < 4; ++kind)
        for (int a = 0; a < 3; ++a)
            for (int order = 1; order <= 12; ++order)
                for (const Band band : bands) {
                    const auto text = textOf(kind, a, order, band) + " Ap=0.5 As=60";
                    const auto expected =
                        reference::records(kind, static_cast<reference::Approximation>(a), {-1.0, 0.5, 60.0},
                                           order, band.p1, band.p2, 1.0f);
                    ASSERT_TRUE(sameBits(recordsOf(create(text)), expected)) << text;
                    ASSERT_TRUE(isStable(expected)) << text;
                }
}

TEST(DesignedFilter, HasThePassbandAttenuationAtItsEdges)
{
    const double tolerances[] = {1e-6, 1e-9, 1e-9};
    for (int kind = 0; kind < 4; ++kind)
        for (int a = 0; a < 3; ++a)
            for (int order = 1; order <= 12; ++order)
                for (const Band band : bands) {
                    const auto text = textOf(kind, a, order, band) + " Ap=1 As=60";
                    const auto records = recordsOf(create(text));
                    ASSERT_NEAR(attenuation(records, static_cast<double>(band.p1)), 1.0, tolerances[a])
                        << text;
                    if (kind >= 2) {
                        ASSERT_NEAR(attenuation(records, static_cast<double>(band.p2)), 1.0, tolerances[a])
                            << text;
                    }
                }
}

TEST(DesignedFilter, OfTheSecondChebyshevTypeHasItsStopbandAttenuationFromTheSelectivityOn)
{
    for (int kind = 0; kind < 4; ++kind)
        for (int order = 1; order <= 12; ++order)
            for (const Band band : bands) {
                const auto text = textOf(kind, 2, order, band) + " Ap=1 As=40";
                const double ws =
                    std::cosh(std::acosh(std::sqrt((1e4 - 1) / (std::pow(10.0, 0.1) - 1))) / order);
                const double f = stopFrequency(kind, band, ws);
                ASSERT_NEAR(attenuation(recordsOf(create(text)), f), 40.0, 1e-6) << text << ", at " << f;
            }
}

// As = 10 log10((10^(Ap/10) - 1) / (16 q^N) + 1) with the nome q. An odd order misses the passband attenuation a little,
// since its poles stand as for a stopband without end; the less, the higher the order and the selectivity.
TEST(DesignedFilter, OfTheEllipticTypeHasTheAttenuationsOfTheClosedForm)
{
    const auto edge = 0.25f;
    for (const float ws : {1.5f, 2.0f, 4.0f})
        for (int order = 2; order <= 12; ++order) {
            const auto text =
                textOf(0, 3, order, {edge, -1.0f}) + " Ap=1 As=0.125 fstop=" + number(edge * ws);
            const auto records = recordsOf(create(text));
            const double passband = attenuation(records, 0.25);
            ASSERT_NEAR(passband, 1.0, order % 2 == 0 ? 1e-9 : 2e-3) << text;
            const double stopFrom = stopFrequency(0, {edge, -1.0f}, static_cast<double>(ws));
            double least = 1000.0;
            for (int i = 0; i <= 4000; ++i)
                least = std::min(least, attenuation(records, stopFrom + (0.9999 - stopFrom) * i / 4000.0));
            const double q = reference::nomeOf(static_cast<double>(ws));
            const double closed =
                10.0 * std::log10((std::pow(10.0, 0.1) - 1.0) / (16.0 * std::pow(q, order)) + 1.0);
            ASSERT_NEAR(least, closed, order == 2 ? 0.3 : 0.02) << text;
        }
}
