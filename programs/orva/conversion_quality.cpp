#include "conversion_quality.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <numbers>
#include <vector>

namespace orva
{
namespace
{

const double pi = std::numbers::pi;

// By Euclid's steps, as GCC 12 at -O2 has made other numbers of std::gcd where it was inlined.
constexpr int greatestCommonDivisor(int a, int b)
{
    while (b != 0) {
        const int rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

// The first half of the filter's taps without the factor L, at `longer` times the lower rate, and the one in its middle:
// a sinc with its cut at 0.95 of half the lower rate, under Blackman's window with a period of N + 1.
struct Taps {
    std::vector<double> half; // h[0] ... h[N / 2 - 1]; the other half mirrors it
    double middle;
};

Taps tapsOf(int order, int longer)
{
    const int half = order * longer;
    const double c = 0.95 * pi / longer;
    Taps taps{std::vector<double>(static_cast<size_t>(half)), 0.95 / longer};
    for (int i = 0; i < half; ++i) {
        const double t = i - half;
        const double angle = 2 * pi * i / (2 * half + 1);
        taps.half[static_cast<size_t>(i)] =
            std::sin(c * t) / (pi * t) * (0.42 - 0.5 * std::cos(angle) + 0.08 * std::cos(2 * angle));
    }
    return taps;
}

// H(w) = h[N / 2] + 2 sum over i of h[i] cos(w (N / 2 - i)), as the filter is symmetric.
double gainAt(const Taps &taps, double w)
{
    const std::complex<double> step = std::polar(1.0, w);
    std::complex<double> turn = step;
    double sum = 0;
    for (auto tap = taps.half.rbegin(); tap != taps.half.rend(); ++tap) {
        sum += *tap * turn.real();
        turn = {turn.real() * step.real() - turn.imag() * step.imag(),
                turn.real() * step.imag() + turn.imag() * step.real()};
    }
    return taps.middle + 2 * sum;
}

} // namespace

ConversionQuality polyphaseQuality(int from, int to, int order)
{
    const int common = greatestCommonDivisor(from, to);
    const int up = to / common;
    const int down = from / common;
    // Many phases differ little from more of them; so few are computed with that it takes no time to speak of.
    const int longer = std::min(std::max(up, down), std::max(8, 16384 / order));
    const Taps taps = tapsOf(order, longer);
    const double nyquist = pi / longer; // of the lower rate, as an angle
    const double width = 3.0 / order;
    const double pass = std::max(0.95 - width, 0.0);
    const double stop = 0.95 + width;

    ConversionQuality quality;
    for (int i = 0; i <= 100; ++i) {
        const double gain = gainAt(taps, nyquist * pass * i / 100);
        quality.rippleDb = std::max(quality.rippleDb, std::fabs(20 * std::log10(std::fabs(gain))));
    }
    double leak = 1e-10; // nothing is rejected at equal rates, where nothing can appear at another frequency
    for (int i = 0; i <= 200; ++i) { // the first lobes, and the rest more coarsely
        const double near = stop + 2 * width * i / 100;
        const double far = stop + (longer - stop) * i / 200;
        for (const double place : {near, far})
            if (place <= longer)
                leak = std::max(leak, std::fabs(gainAt(taps, nyquist * place)));
    }
    quality.rejectionDb = longer > 1 ? -20 * std::log10(leak) : 0;
    const double lower = std::min(from, to) / 2.0;
    quality.passHertz = pass * lower;
    quality.stopHertz = stop * lower;
    if (up > down) {
        const double delay = static_cast<double>(order) * up / down;
        quality.earlySamples = std::nearbyint(delay) - delay;
    }
    return quality;
}

std::string describe(const ConversionQuality &quality)
{
    char text[192];
    std::string words;
    std::snprintf(text, sizeof text, "ripple %.2g dB up to %.0f Hz", quality.rippleDb, quality.passHertz);
    words += text;
    if (quality.rejectionDb > 0) {
        std::snprintf(text, sizeof text, ", rejection %.0f dB from %.0f Hz on", quality.rejectionDb,
                      quality.stopHertz);
        words += text;
    }
    const double early = quality.earlySamples;
    std::snprintf(text, sizeof text, ", delay %.3g", early == 0 ? 0 : -early);
    words += text;
    return words + (early == 0 ? "" : " samples");
}

} // namespace orva
