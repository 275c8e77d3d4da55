#include "response_table.h"

#include <kett/KTstring.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <numbers>

namespace orva
{
namespace
{

const double leastDb = -200; // what is below it is told as that
enum { mostListed = 16 };

// Without the sign of a rounding.
double cleared(double value, double unit)
{
    return std::fabs(value) < unit / 2 ? 0 : value;
}

void printRow(const ResponseAt &point, const std::string &edge)
{
    std::printf("%10.1f ", point.hertz);
    if (point.gainDb > leastDb)
        std::printf("%10.2f %10.1f %12.2f", cleared(point.gainDb, 0.01), cleared(point.phaseDegrees, 0.1),
                    cleared(point.delaySamples, 0.01));
    else
        std::printf("below -200          -            -");
    std::printf("%s%s\n", edge.empty() ? "" : "  ", edge.c_str());
}

// The frequencies of the table, with the key of the edge that is there.
std::map<double, std::string> frequenciesOf(const std::string &text, int rate)
{
    std::map<double, std::string> rows{{0, ""}};
    for (int64_t decade = 1; decade <= rate; decade *= 10) {
        for (const int digit : {1, 2, 5}) {
            const auto hertz = static_cast<double>(digit * decade);
            if (hertz >= rate / 4800.0 && hertz <= rate / 2.0)
                rows[hertz] = "";
        }
    }
    for (const char *key : {"fpass", "fpass1", "fpass2", "fstop", "fstop1", "fstop2"}) {
        const auto hertz = static_cast<double>(KTSTRING_GetFloatValueFromString(text.c_str(), key, 0));
        if (hertz > 0)
            rows[hertz] = key;
    }
    return rows;
}

std::string edgesOfHalfPower(const std::vector<double> &points)
{
    std::string list;
    for (const double hertz : points) {
        char edge[32];
        std::snprintf(edge, sizeof edge, "%s%.1f Hz", list.empty() ? "" : ", ", hertz);
        list += edge;
    }
    return list.empty() ? "nowhere" : list;
}

bool isSame(std::complex<double> a, std::complex<double> b)
{
    return std::abs(a - b) < 1e-6;
}

// By rising frequency, one of each pair, with how often each occurs where that is more than once.
std::string listOf(std::vector<std::complex<double>> roots, int rate)
{
    std::erase_if(roots, [](const auto &root) { return root.imag() < 0; });
    std::ranges::sort(roots, {},
                      [](const auto &root) { return std::pair(std::fabs(std::arg(root)), std::abs(root)); });
    std::string list;
    int listed = 0;
    for (size_t i = 0; i < roots.size();) {
        const auto same = std::find_if(roots.begin() + static_cast<ptrdiff_t>(i), roots.end(),
                                       [&](const auto &root) { return !isSame(root, roots[i]); });
        const auto times = static_cast<size_t>(same - roots.begin()) - i;
        if (listed++ == mostListed)
            return list + ", and more";
        char text[64];
        const double hertz = std::fabs(std::arg(roots[i])) * rate / (2 * std::numbers::pi);
        std::snprintf(text, sizeof text, "%s%.5f at %.1f Hz", list.empty() ? "" : ", ", std::abs(roots[i]),
                      hertz);
        list += text;
        if (times > 1)
            list += " (" + std::to_string(times) + " times)";
        i += times;
    }
    return list;
}

void printRoots(const char *name, const std::vector<std::complex<double>> &roots, int rate)
{
    std::printf("%s: %zu%s%s\n", name, roots.size(), roots.empty() ? "" : "; radius ",
                listOf(roots, rate).c_str());
}

} // namespace

void printResponse(const std::string &text, int rate, const std::vector<Section> &sections,
                   const std::vector<ResponseAt> &curve)
{
    double greatest = -HUGE_VAL;
    for (const ResponseAt &point : curve)
        greatest = std::max(greatest, point.gainDb);
    if (greatest > leastDb)
        std::printf("greatest gain: %.2f dB; 3 dB below it: %s\n", cleared(greatest, 0.01),
                    edgesOfHalfPower(halfPowerPoints(sections, rate, curve)).c_str());
    else
        std::puts("greatest gain: below -200 dB");
    std::puts("        Hz    gain dB    phase °  delay, samples");
    for (const auto &[hertz, edge] : frequenciesOf(text, rate))
        printRow(responseAt(sections, rate, hertz), edge);
    const PolesAndZeros all = polesAndZerosOf(sections);
    printRoots("poles", all.poles, rate);
    printRoots("zeros", all.zeros, rate);
}

} // namespace orva
