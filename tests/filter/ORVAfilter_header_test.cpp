// What the header says of the language of filters, read out of the header and tried.
#include "filter/ORVAfilter_designed.h"
#include "support/folder.h"
#include "support/pattern.h"

#include <orva/ORVAfilter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace
{

struct Claim {
    std::string decibels; // as it is written: half of its last digit is what it may be off
    double frequency;
};

struct Example {
    std::string text;
    std::vector<Claim> claims;
};

std::vector<std::string> headerLines()
{
    std::istringstream header(support::readFile(ORVA_FILTER_HEADER));
    std::vector<std::string> lines;
    for (std::string line; std::getline(header, line);)
        lines.push_back(line);
    return lines;
}

// A line that is nothing but a text in quotes, and the claims on the line below it.
std::vector<Example> examples()
{
    const support::Pattern quoted(R"re( \*      "(.*)")re");
    const support::Pattern claim(R"re((-?[0-9.]+) dB at ([0-9.]+))re");
    const auto lines = headerLines();
    std::vector<Example> found;
    for (size_t i = 0; i + 1 < lines.size(); ++i) {
        const auto text = quoted.match(lines[i]);
        if (!text)
            continue;
        found.push_back({(*text)[1], {}});
        for (const auto &groups : claim.allIn(lines[i + 1]))
            found.back().claims.push_back({groups[1], std::stod(groups[2])});
    }
    return found;
}

double numberAfter(const std::string &text, const std::string &key, double otherwise)
{
    const auto groups = support::Pattern("(?:^|[; ])" + key + "=([0-9.]+)").firstIn(text);
    return groups ? std::stod((*groups)[1]) : otherwise;
}

// What a filter answers to a single 1 on its first channel.
std::vector<float> answerOf(const std::string &text)
{
    const double channels = numberAfter(text, "num_channels", numberAfter(text, "nc", 1));
    const auto stride = static_cast<size_t>(channels);
    std::vector<float> block(65536 * stride);
    block[0] = 1.0f;
    const Filter filter = create(text);
    if (filter == nullptr ||
        ORVA_Filter(filter.get(), block.data(), block.data(), static_cast<uint32_t>(block.size())) != 1)
        return {};
    std::vector<float> answer;
    for (size_t i = 0; i < block.size(); i += stride)
        answer.push_back(block[i]);
    return answer;
}

double attenuationOf(const std::vector<float> &answer, double f)
{
    const std::complex<double> step = std::polar(1.0, -f * 3.141592653589793);
    std::complex<double> sum = 0.0;
    for (size_t i = answer.size(); i-- > 0;)
        sum = sum * step + static_cast<double>(answer[i]);
    return -20.0 * std::log10(std::abs(sum));
}

double halfOfTheLastDigit(const std::string &number)
{
    const size_t point = number.find('.');
    return 0.5 * std::pow(10.0, -static_cast<double>(number.size() - point - 1));
}

// By how much the ripple of an elliptic passband misses 1 dB: at the edge in odd orders, at its highest in even
// ones, where 0 dB are missed.
double rippleMissed(int order, const std::string &ratio)
{
    const double edge = 0.25;
    const auto records =
        recordsOf(create("approximation=ellip; Ap=1; As=0.01; fpass=0.25; order=" + std::to_string(order) +
                         "; fstop=" + std::to_string(edge * std::stod(ratio))));
    if (order % 2 != 0)
        return 1.0 - attenuation(records, edge);
    const int steps = 1000;
    int at = 0;
    for (int i = 0; i <= steps; ++i)
        if (attenuation(records, edge * i / steps) < attenuation(records, edge * at / steps))
            at = i;
    double low = edge * (at - 1) / steps;
    double high = edge * (at + 1) / steps;
    for (int i = 0; i < 60; ++i) {
        const double third = (high - low) / 3.0;
        if (attenuation(records, low + third) < attenuation(records, high - third))
            high -= third;
        else
            low += third;
    }
    return attenuation(records, low);
}

} // namespace

TEST(FilterHeader, ExamplesDoWhatIsSaidBelowThem)
{
    const auto found = examples();
    EXPECT_GE(found.size(), 12u);
    for (const auto &[text, claims] : found) {
        EXPECT_GE(claims.size(), 2u) << text;
        const auto answer = answerOf(text);
        ASSERT_FALSE(answer.empty()) << text;
        const double half = numberAfter(text, "fs", 2.0) / 2.0;
        for (const auto &[decibels, frequency] : claims)
            EXPECT_NEAR(attenuationOf(answer, frequency / half), std::stod(decibels),
                        halfOfTheLastDigit(decibels) + 1e-3)
                << text << ", at " << frequency;
    }
}

TEST(FilterHeader, ShowsEveryTypeApproximationAndFormOfNumbers)
{
    std::string all;
    for (const auto &example : examples())
        all += example.text + "\n";
    for (const char *word :
         {"type=highpass", "type=bandpass", "type=bandreject", "=butterworth", "=chebyshev;",
          "=chebyshev2",   "=ellip",        "order=",          "Ap=",          "As=",
          "fpass=",        "fpass1=",       "fpass2=",         "fstop=",       "fstop1=",
          "fstop2=",       "fs=",           "gain=",           "nc=",          "num_channels=",
          "biquads=",      "numerator=",    "denominator="})
        EXPECT_NE(all.find(word), std::string::npos) << word;
}

TEST(FilterHeader, TellsByHowMuchAnEllipticRippleMisses)
{
    int values = 0;
    const support::Pattern row(R"re( \*      (1\.2|1\.5|2\.0) +[0-9].*)re");
    for (const auto &line : headerLines()) {
        if (!row.match(line))
            continue;
        std::istringstream words(line.substr(2));
        std::string ratio, value;
        words >> ratio;
        for (int order = 1; words >> value; ++order, ++values) {
            const double told = std::stod(value);
            EXPECT_NEAR(rippleMissed(order, ratio), told, 0.05 * told) << ratio << ", order " << order;
        }
    }
    EXPECT_EQ(values, 18);
}

TEST(FilterHeader, TellsTheBoundOfTheEllipticRippleFromOrderSevenOn)
{
    for (int order = 7; order <= 21; ++order)
        for (const char *ratio : {"1.2", "1.5", "2.0"})
            EXPECT_LE(std::fabs(rippleMissed(order, ratio)), order % 6 == 3 ? 2e-5 : 1e-6)
                << ratio << ", order " << order;
}
