// Butterworth and Chebyshev prototypes: order estimates, and roots in the s-plane with the passband edge at 1 rad/s.
// Source: A. Antoniou, "Digital Filters: Analysis, Design, and Applications", chapter on approximations.
#include "filter/ORVAfilter_design.h"

#include "common/numbers.h"

#include <kett/KTdebug.h>

#include <cmath>
#include <limits>

namespace orva
{

const Approximation _Butterworth = {_ButterworthOrder, _ButterworthDesign};
const Approximation _Chebyshev = {_ChebyshevOrder, _ChebyshevDesign};
const Approximation _ChebyshevII = {_ChebyshevIIOrder, _ChebyshevIIDesign};

namespace
{

constexpr Root infiniteRoot = {std::numeric_limits<double>::infinity(), 0.0};

bool isSpecified(double ws, double Ap, double As)
{
    return !(ws <= 0.0 || Ap <= 0.0 || As <= 0.0);
}

// Numerator and quotient pass through float, which decides orders that lie at an integer.
double roundedQuotient(double numerator, double denominator)
{
    const float rounded = static_cast<float>(numerator);
    return static_cast<double>(static_cast<float>(static_cast<double>(rounded) / denominator));
}

// i pi / (2N), i = 1, 3, ...
double angle(int32_t i, int32_t N)
{
    return (static_cast<double>(i) * pi) / (2.0 * static_cast<double>(N));
}

void fillInfinite(Root *zeros, int32_t count)
{
    for (int32_t k = 0; k < count; ++k)
        zeros[k] = infiniteRoot;
}

// The stopband edge, and the stopband attenuation in dB over 10.
struct Stopband {
    double ws;
    double E;
};

// Where only one of `ws` and `As` is given, the other follows from the order. The way from `ws` to the attenuation does not
// invert the way back; that is deliberate, and for an `Ap` below 3.01 dB it mostly ends in not-a-number.
Stopband stopband(double ws, double Ap, double As, int32_t order)
{
    if (As > 0.0 && ws > 0.0)
        return {ws, As / 10.0};
    const double N = static_cast<double>(order);
    if (As > 0.0)
        return {std::cosh(std::acosh(std::sqrt(attenuationRatio(Ap, As))) / N), As / 10.0};
    const double c = std::cosh(N * std::acosh(ws));
    return {ws, (10.0 * std::log10(std::pow(10.0, Ap / 10.0) - 1.0) * c * c + 1.0) / 10.0};
}

} // namespace

double attenuationRatio(double Ap, double As)
{
    return (std::pow(10.0, As / 10.0) - 1.0) / (std::pow(10.0, Ap / 10.0) - 1.0);
}

int32_t truncatedOrLowest(double x)
{
    // Both bounds are doubles, and so the comparisons exact.
    return x > -2147483649.0 && x < 2147483648.0 ? static_cast<int32_t>(x)
                                                 : std::numeric_limits<int32_t>::min();
}

// log10(D) / (2 log10(ws)), cut, and 1 more; D as in attenuationRatio()
int32_t _ButterworthOrder(double, double ws, double Ap, double As)
{
    if (!isSpecified(ws, Ap, As))
        return -1;
    const double D = attenuationRatio(Ap, As);
    return truncatedOrLowest(roundedQuotient(std::log10(D), std::log10(ws) + std::log10(ws))) + 1;
}

// acosh(sqrt(D)) / acosh(ws), cut, and 1 more
int32_t _ChebyshevOrder(double, double ws, double Ap, double As)
{
    if (!isSpecified(ws, Ap, As))
        return -1;
    const double D = attenuationRatio(Ap, As);
    return truncatedOrLowest(roundedQuotient(std::acosh(std::sqrt(D)), std::acosh(ws))) + 1;
}

// That of _ChebyshevOrder().
int32_t _ChebyshevIIOrder(double wp, double ws, double Ap, double As)
{
    return _ChebyshevOrder(wp, ws, Ap, As);
}

// With eps^2 = 10^(Ap / 10) - 1 and the angles theta = i pi / (2N):
//     poles  eps^(-1/N) (-sin(theta) + j cos(theta))
int32_t _ButterworthDesign(double, double, double Ap, double, int32_t order, Root *poles, Root *zeros,
                           double *designGain)
{
    if (Ap <= 0.0 || order <= 0)
        return 0;
    // Rounded to float in this design and in no other; the bits of every Butterworth filter rest on it.
    const double eps = static_cast<double>(static_cast<float>(std::sqrt(std::pow(10.0, Ap / 10.0) - 1.0)));
    const double r = std::pow(eps, -1.0 / static_cast<double>(order));
    const int32_t pairs = order >> 1;
    *designGain = 1.0;
    for (int32_t k = 0; k < pairs; ++k) {
        const double theta = angle(2 * k + 1, order);
        poles[k] = {-r * std::sin(theta), r * std::cos(theta)};
        const double modulus = std::abs(poles[k]);
        *designGain = modulus * modulus * *designGain;
    }
    if (order & 1) {
        poles[pairs] = {-r * std::sin(angle(order, order)), 0.0};
        *designGain = std::abs(poles[pairs]) * *designGain;
    }
    fillInfinite(zeros, order);
    return 1;
}

// With eps^2 = 10^(Ap / 10) - 1 and the angles theta as above:
//     poles  sin(theta) sinh(phi) + j cos(theta) cosh(phi),  phi = asinh(1 / eps) / N
// They lie in the right half-plane; the last transform brings them inside the unit circle by reflection.
int32_t _ChebyshevDesign(double, double, double Ap, double, int32_t order, Root *poles, Root *zeros,
                         double *designGain)
{
    if (Ap <= 0.0 || order <= 0)
        return 0;
    const double eps = std::sqrt(std::pow(10.0, Ap / 10.0) - 1.0);
    const double phi = (1.0 / static_cast<double>(order)) * std::asinh(1.0 / eps);
    const int32_t pairs = order >> 1;
    *designGain = 1.0;
    for (int32_t k = 0; k < pairs; ++k) {
        const double theta = angle(2 * k + 1, order);
        poles[k] = {std::sin(theta) * std::sinh(phi), std::cosh(phi) * std::cos(theta)};
        const double modulus = std::abs(poles[k]);
        *designGain = modulus * modulus * *designGain;
    }
    if (order & 1) {
        poles[pairs] = {std::sinh(phi) * std::sin(angle(order, order)), 0.0};
        *designGain = std::abs(poles[pairs]) * *designGain;
    }
    fillInfinite(zeros, order);
    if (!(order & 1))
        *designGain = std::pow(10.0, -Ap / 20.0) * *designGain;
    return 1;
}

// With eps^2 = 1 / (10^E - 1), E and the edge ws of the stopband:
//     zeros  j ws / cos(theta)
//     poles  ws / (-sin(theta) sinh(phi) - j cos(theta) cosh(phi)),  phi = asinh(1 / eps) / N
int32_t _ChebyshevIIDesign(double, double ws, double Ap, double As, int32_t order, Root *poles, Root *zeros,
                           double *designGain)
{
    if (Ap <= 0.0 || order <= 0)
        return 0;
    if (As <= 0.0 && ws <= 0.0) {
        KTDEBUG_Error(-1, "ORVA_CreateFilter: Type II Chebyshev filters require fstop or As");
        return 0;
    }
    const auto [edge, E] = stopband(ws, Ap, As, order);
    const double eps = 1.0 / std::sqrt(std::pow(10.0, E) - 1.0);
    const double phi = (1.0 / static_cast<double>(order)) * std::asinh(1.0 / eps);
    const int32_t pairs = order >> 1;
    *designGain = 1.0;
    for (int32_t k = 0; k < pairs; ++k) {
        const double theta = angle(2 * k + 1, order);
        const double c = std::cos(theta);
        const double s = std::sin(theta);
        zeros[k] = {edge * 0.0 / c, edge / c};
        poles[k] = edge / Root(-(s * std::sinh(phi)), -(c * std::cosh(phi)));
        const double p = std::abs(poles[k]);
        const double z = std::abs(zeros[k]);
        *designGain = (p * p / (z * z)) * *designGain;
    }
    if (order & 1) {
        // Positive, unlike the real parts above: left to the reflection of the last transform.
        poles[pairs] = {edge / (std::sin(angle(order, order)) * std::sinh(phi)), 0.0};
        zeros[pairs] = infiniteRoot;
        *designGain = std::abs(poles[pairs]) * *designGain;
    }
    return 1;
}

} // namespace orva
