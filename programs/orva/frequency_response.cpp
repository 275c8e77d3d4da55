#include "frequency_response.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace orva
{

ResponseAt responseAt(const std::vector<float> &answer, double rate, double hertz)
{
    const double w = 2 * std::numbers::pi * hertz / rate;
    std::complex<double> sum = 0;
    std::complex<double> moment = 0;
    std::complex<double> step = std::polar(1.0, -w);
    std::complex<double> turn = 1;
    for (size_t n = 0; n < answer.size(); ++n) {
        if (n % 1024 == 0)
            turn = std::polar(1.0, -w * static_cast<double>(n)); // before roundings add up
        const auto sample = static_cast<double>(answer[n]);
        const std::complex<double> term(sample * turn.real(), sample * turn.imag());
        sum += term;
        moment += static_cast<double>(n) * term;
        turn = {turn.real() * step.real() - turn.imag() * step.imag(),
                turn.real() * step.imag() + turn.imag() * step.real()};
    }
    const double power = std::norm(sum);
    const double degrees = 180 / std::numbers::pi;
    return {hertz, 10 * std::log10(power), degrees * std::arg(sum),
            (moment.real() * sum.real() + moment.imag() * sum.imag()) / power};
}

std::vector<ResponseAt> responseCurve(const std::vector<float> &answer, double rate, int points)
{
    std::vector<ResponseAt> curve;
    curve.reserve(static_cast<size_t>(points));
    for (int i = 0; i < points; ++i)
        curve.push_back(
            responseAt(answer, rate, rate / 2 * std::pow(2400.0, static_cast<double>(i) / (points - 1) - 1)));
    return curve;
}

std::vector<double> halfPowerPoints(const std::vector<float> &answer, double rate,
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
            ((responseAt(answer, rate, middle).gainDb < level) == rises ? low : high) = middle;
        }
        points.push_back((low + high) / 2);
    }
    return points;
}

} // namespace orva
