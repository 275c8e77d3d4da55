#include <orva/ORVAutil.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace orva
{
namespace
{

// Edges of the Bark bands in hertz, by index.
constexpr std::array<int32_t, 25> bartFreq = {0,    60,   150,  250,  350,  450,   570,  700,  840,
                                              1000, 1170, 1370, 1600, 1850, 2150,  2500, 2900, 3400,
                                              4000, 4800, 5800, 7000, 8500, 10500, 13500};
constexpr int32_t lastEdge = 24;

constexpr double melsPerLog = 1127.01048;

// The value of the Bark formula at 1 Hz.
constexpr double leastBark = 0.009880060319993549;

// Truncated toward zero and limited to first .. last. The limits come first, as double, since a value beyond
// the range of an integer must not be converted.
int32_t edgeIndex(double bark, int32_t first, int32_t last)
{
    return static_cast<int32_t>(std::clamp(bark, static_cast<double>(first), static_cast<double>(last)));
}

} // namespace
} // namespace orva

using namespace orva;

double ORVAUTIL_Freq2Mels(double frequency)
{
    return melsPerLog * std::log(frequency / 700.0 + 1.0);
}

double ORVAUTIL_Mels2Freq(double mels)
{
    return (std::exp(mels / melsPerLog) - 1.0) * 700.0;
}

double ORVAUTIL_Freq2Bark(double frequency)
{
    if (frequency < 1.0)
        return leastBark;
    const double ratio = frequency / 7500.0;
    return 13.0 * std::atan(0.00076 * frequency) + 3.5 * std::atan(ratio * ratio);
}

double ORVAUTIL_Bark2Freq(double bark)
{
    if (std::isnan(bark))
        return std::numeric_limits<double>::quiet_NaN();
    const int32_t lo = edgeIndex(bark, 0, lastEdge - 1);
    const int32_t hi = edgeIndex(bark + 1.0, 1, lastEdge);
    const auto below = bartFreq[static_cast<size_t>(lo)];
    const auto above = bartFreq[static_cast<size_t>(hi)];
    return static_cast<double>(above - below) * (bark - static_cast<double>(lo)) + static_cast<double>(below);
}
