#include "ORVAxcorr_reference.h"

#include "support/log.h"
#include "support/random.h"
#include "support/recording.h"

#include <limits>

using namespace xcorr;
using support::Random;
using support::sameBits;

namespace
{

struct Answer {
    double coefficient;
    int32_t lag;
};

constexpr int32_t untouched = 12345;

Answer ask(const Samples &x, const Samples &y)
{
    Answer answer = {0, untouched};
    // Never null, which an empty vector's data may be.
    const float nothing = 0;
    answer.coefficient = ORVA_XcorrCoef(x.empty() ? &nothing : x.data(), lengthOf(x),
                                        y.empty() ? &nothing : y.data(), lengthOf(y), &answer.lag);
    return answer;
}

// x delayed by `delay` samples, cut at its length.
Samples delayed(const Samples &x, size_t delay)
{
    Samples result(delay, 0.0f);
    result.insert(result.end(), x.begin(), x.end() - static_cast<ptrdiff_t>(delay));
    return result;
}

Answer bySumsInDouble(const Samples &x, const Samples &y)
{
    const auto r = bySums(x, y);
    const auto peak =
        std::max_element(r.begin(), r.end(), [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    double powerX = 0, powerY = 0;
    for (const float v : x)
        powerX += double{v} * double{v} / static_cast<double>(x.size());
    for (const float v : y)
        powerY += double{v} * double{v} / static_cast<double>(y.size());
    return {std::fabs(*peak) / std::sqrt(powerX * powerY),
            static_cast<int32_t>(peak - r.begin()) - (std::max(lengthOf(x), lengthOf(y)) - 1)};
}

} // namespace

TEST(XcorrCoef, AVectorIsLikeItselfAndItsNegation)
{
    Random random;
    const auto x = random.noise(333);
    auto negated = x;
    for (float &v : negated)
        v = -v;
    for (const auto &y : {x, negated}) {
        const auto [coefficient, lag] = ask(x, y);
        EXPECT_NEAR(coefficient, 1.0, 1e-6);
        EXPECT_EQ(lag, 0);
    }
}

TEST(XcorrCoef, APositiveLagMeansThatTheFirstVectorIsDelayed)
{
    Random random;
    const auto y = random.noise(200);
    EXPECT_EQ(ask(delayed(y, 3), y).lag, 3);
    EXPECT_EQ(ask(y, delayed(y, 3)).lag, -3);
}

TEST(XcorrCoef, FindsADelayInSpeech)
{
    const auto speech = support::recording();
    const Samples x(speech.begin() + 20000, speech.begin() + 30000);
    const Samples y(speech.begin() + 20123, speech.begin() + 30123);
    EXPECT_EQ(ask(x, y).lag, 123);
}

TEST(XcorrCoef, WithoutALagTheCoefficientIsTheSame)
{
    Random random;
    const auto x = random.noise(77), y = random.noise(50);
    EXPECT_EQ(ORVA_XcorrCoef(x.data(), 77, y.data(), 50, nullptr), ask(x, y).coefficient);
}

TEST(XcorrCoef, LevelsDoNotMatter)
{
    Random random;
    const auto x = random.noise(100), y = random.noise(100);
    auto doubled = x;
    for (float &v : doubled)
        v *= 2;
    EXPECT_EQ(ask(doubled, y).coefficient, ask(x, y).coefficient);
}

TEST(XcorrCoef, UnequalLengthsNeverReachOne)
{
    const auto [coefficient, lag] = ask({1, -2, 3, 0.5f}, {1, -2, 3, 0.5f, 0, 0, 0, 0});
    EXPECT_NEAR(coefficient, std::sqrt(4.0 * 8.0) / 8.0, 1e-6);
    EXPECT_NEAR(coefficient, 0.7071, 5e-5);
    EXPECT_EQ(lag, 0);
}

TEST(XcorrCoef, EqualsTheDefinitionInDouble)
{
    Random random;
    for (int round = 0; round < 100; ++round) {
        const auto x = random.noise(static_cast<size_t>(random.integer(1, 70)));
        const auto y = random.noise(static_cast<size_t>(random.integer(1, 70)));
        const auto expected = bySumsInDouble(x, y), actual = ask(x, y);
        ASSERT_NEAR(actual.coefficient, expected.coefficient, 1e-5) << x.size() << ", " << y.size();
    }
}

TEST(XcorrCoef, IsThePeakOfTheProcessorOverTheRootOfThePowersBitForBit)
{
    Random random;
    for (int round = 0; round < 100; ++round) {
        const auto x = random.noise(static_cast<size_t>(random.integer(1, 70)));
        const auto y = random.noise(static_cast<size_t>(random.integer(1, 70)));
        const auto r = bySteps(x, y, false);
        float peak = 0;
        int32_t place = 0;
        for (size_t j = 0; j < r.size(); ++j)
            if (std::fabs(r[j]) > peak) {
                peak = std::fabs(r[j]);
                place = static_cast<int32_t>(j);
            }
        double squaresX = 0, squaresY = 0;
        for (const float v : x)
            squaresX += double{v} * double{v};
        for (const float v : y)
            squaresY += double{v} * double{v};
        const double px = squaresX / static_cast<double>(x.size()),
                     py = squaresY / static_cast<double>(y.size());
        const auto actual = ask(x, y);
        ASSERT_TRUE(sameBits(actual.coefficient, double{peak} / std::sqrt(py * px)));
        ASSERT_EQ(actual.lag, place - (static_cast<int32_t>(std::max(x.size(), y.size())) - 1));
    }
}

TEST(XcorrCoef, SilenceAndEmptinessGiveNotANumberAndALag)
{
    struct {
        Samples x, y;
        int32_t lag;
    } const cases[] = {
        {Samples(4, 0.0f), Samples(4, 0.0f), -3}, {{}, {1, 2, 3}, -2}, {{1, 2, 3}, {}, -2}, {{}, {}, 1}};
    for (const auto &[x, y, lag] : cases) {
        const auto answer = ask(x, y);
        EXPECT_TRUE(std::isnan(answer.coefficient)) << x.size() << ", " << y.size();
        EXPECT_EQ(answer.lag, lag) << x.size() << ", " << y.size();
    }
}

TEST(XcorrCoef, NullVectorsAreRefusedWithOneMessage)
{
    const float sample = 1;
    struct {
        const float *x, *y;
        const char *text;
    } const cases[] = {{nullptr, &sample, "ORVA_XcorrCoef: Invalid vector x\n"},
                       {&sample, nullptr, "ORVA_XcorrCoef: Invalid vector y\n"},
                       {nullptr, nullptr, "ORVA_XcorrCoef: Invalid vector x\n"}};
    for (const auto &[x, y, text] : cases) {
        support::Log log;
        int32_t lag = untouched;
        EXPECT_EQ(ORVA_XcorrCoef(x, 1, y, 1, &lag), -1.0);
        EXPECT_EQ(lag, untouched);
        EXPECT_EQ(log.messages, std::vector{support::error(text)});
    }
}

TEST(XcorrCoef, LengthsThatCannotBeHadAreRefusedInSilence)
{
    constexpr int32_t most = std::numeric_limits<int32_t>::max();
    const float sample = 1;
    support::Log log;
    for (const auto &[lengthX, lengthY] : std::vector<std::pair<int32_t, int32_t>>{
             {-1, 1}, {1, -1}, {std::numeric_limits<int32_t>::min(), 1}, {1, most}}) {
        int32_t lag = untouched;
        EXPECT_EQ(ORVA_XcorrCoef(&sample, lengthX, &sample, lengthY, &lag), -1.0)
            << lengthX << ", " << lengthY;
        EXPECT_EQ(lag, untouched);
    }
    EXPECT_TRUE(log.messages.empty());
}
