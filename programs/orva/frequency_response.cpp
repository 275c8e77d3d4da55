#include "frequency_response.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace orva
{

namespace
{

struct Polynomial {
    std::complex<double> value, moment; // sums of p[k] e^-jwk and of k p[k] e^-jwk
    double size = 0;                    // sum of |p[k]|
};

Polynomial polynomialAt(const std::vector<double> &p, double w)
{
    Polynomial at;
    for (size_t k = 0; k < p.size(); ++k) {
        const std::complex<double> term = p[k] * std::polar(1.0, -w * static_cast<double>(k));
        at.value += term;
        at.moment += static_cast<double>(k) * term;
        at.size += std::fabs(p[k]);
    }
    return at;
}

} // namespace

ResponseAt responseAt(const std::vector<Section> &sections, double rate, double hertz)
{
    const double w = 2 * std::numbers::pi * hertz / rate;
    ResponseAt at{hertz};
    double radians = 0;
    for (const Section &section : sections) {
        const Polynomial b = polynomialAt(section.b, w);
        const Polynomial a = polynomialAt(section.a, w);
        if (std::abs(b.value) < 1e-13 * b.size) // a zero: what is left of it is rounding
            return {hertz, -HUGE_VAL, NAN, NAN};
        at.gainDb += 20 * (std::log10(std::abs(b.value)) - std::log10(std::abs(a.value)));
        radians += std::arg(b.value) - std::arg(a.value);
        at.delaySamples += (b.moment / b.value).real() - (a.moment / a.value).real();
    }
    at.phaseDegrees = std::remainder(180 / std::numbers::pi * radians, 360);
    return at;
}

std::vector<ResponseAt> responseCurve(const std::vector<Section> &sections, double rate, int points)
{
    std::vector<ResponseAt> curve;
    curve.reserve(static_cast<size_t>(points));
    for (int i = 0; i < points; ++i)
        curve.push_back(responseAt(sections, rate,
                                   rate / 2 * std::pow(2400.0, static_cast<double>(i) / (points - 1) - 1)));
    return curve;
}

std::vector<double> halfPowerPoints(const std::vector<Section> &sections, double rate,
                                    const std::vector<ResponseAt> &curve)
{
    double greatest = -HUGE_VAL;
    for (const ResponseAt &point : curve)
        greatest = std::max(greatest, point.gainDb);
    const double level = greatest + 10 * std::log10(0.5);
    std::vector<double> points;
    for (size_t i = 1; i < curve.size(); ++i) {
        const bool rises = curve[i - 1].gainDb < level;
        if (rises == (curve[i].gainDb < level))
            continue;
        double low = curve[i - 1].hertz;
        double high = curve[i].hertz;
        for (int halvings = 0; halvings < 30; ++halvings) {
            const double middle = (low + high) / 2;
            ((responseAt(sections, rate, middle).gainDb < level) == rises ? low : high) = middle;
        }
        points.push_back((low + high) / 2);
    }
    return points;
}

} // namespace orva
