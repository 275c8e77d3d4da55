// Elliptic prototypes, by the closed-form series of the nome.
// Source: A. Antoniou, "Digital Filters: Analysis, Design, and Applications", section on the elliptic approximation.
#include "filter/ORVAfilter_design.h"

#include "common/numbers.h"

#include <cmath>
#include <limits>

namespace orva
{

const Approximation _Elliptic = {_EllipticOrder, _EllipticDesign};

namespace
{

// The nome q of the modulus k = 1 / ws:
//     q0 = (1 - r) / (2 (1 + r)),  r = (1 - k^2)^(1/4)
//     q = q0 + 2 q0^5 + 15 q0^9 + 150 q0^13
double nome(double k)
{
    const double r = std::sqrt(std::sqrt(1.0 - k * k));
    const double q0 = ((1.0 - r) * 0.5) / (1.0 + r);
    return ((q0 + 2.0 * std::pow(q0, 5.0)) + 15.0 * std::pow(q0, 9.0)) + 150.0 * std::pow(q0, 13.0);
}

// Adds terms until one changes the sum by less than 1e-20 of it. The change is divided by the sum as it stands, not by its
// modulus: a negative sum ends the series after its first term, which the bits of every elliptic filter rest on.
template <class Term> double summed(double sum, double m, Term term)
{
    for (double change = 1.0; change >= 1e-20; m += 1.0) {
        const double next = sum + term(m);
        change = std::abs(sum - next) / sum;
        sum = next;
    }
    return sum;
}

// Numerator of sigma and of every Om: the sum over m of (-1)^m q^(m (m + 1)) f(2m + 1).
template <class Function> double oddSeries(double q, Function f)
{
    return summed(f(1.0), 1.0, [&](double m) {
        return std::pow(q, (m + 1.0) * m) * std::pow(-1.0, m) * f(2.0 * m + 1.0);
    });
}

// Denominator: the sum over m from 1 of (-1)^m q^(m m) f(2m).
template <class Function> double evenSeries(double q, Function f)
{
    return summed(-q * f(2.0), 2.0,
                  [&](double m) { return std::pow(q, m * m) * std::pow(-1.0, m) * f(2.0 * m); });
}

// 2 q^(1/4) odd / (1 + 2 even)
double seriesQuotient(double odd, double even, double q)
{
    return (odd * (2.0 * std::pow(q, 0.25))) / (2.0 * even + 1.0);
}

} // namespace

// log10(16 D) / log10(1 / q) + 1,  D that of attenuationRatio(), but with As * 0.1 for As / 10, which decides bits
int32_t _EllipticOrder(double, double ws, double Ap, double As)
{
    const double D = (std::pow(10.0, As * 0.1) - 1.0) / (std::pow(10.0, Ap * 0.1) - 1.0);
    return truncatedOrLowest(std::log10(16.0 * D) / std::log10(1.0 / nome(1.0 / ws)) + 1.0);
}

// Of the order N and the attenuation Ap, with a = 10^(Ap / 20):
//     lambda = ln((a + 1) / (a - 1)) / (2 N)
//     sigma  = 2 q^(1/4) sum(m >= 0) (-1)^m q^(m (m + 1)) sinh((2m + 1) lambda)
//              / (1 + 2 sum(m >= 1) (-1)^m q^(m m) cosh(2m lambda))
//     W      = sqrt((1 + k sigma^2) (1 + sigma^2 / k))
// and for each pair i, with mu = i + 1 in an odd order and i + 1/2 in an even one:
//     Om = the same quotient with sin and cos of (2m + 1) pi mu / N and 2m pi mu / N
//     V  = sqrt((1 - k Om^2) (1 - Om^2 / k))
//     a0 = 1 / Om^2                                       the zeros are the roots of s^2 + a0
//     b0 = ((sigma V)^2 + (Om W)^2) / (1 + sigma^2 Om^2)^2
//     b1 = 2 |sigma| V / (1 + sigma^2 Om^2)               the poles those of s^2 + b1 s + b0
// The series has the geometric mean of its edges at 1. All roots are multiplied by sqrt(ws), which brings the passband
// edge there.
int32_t _EllipticDesign(double, double ws, double Ap, double As, int32_t order, Root *poles, Root *zeros,
                        double *designGain)
{
    if (ws <= 0.0 || Ap <= 0.0 || As <= 0.0)
        return 0;
    const double N = static_cast<double>(order);
    const double k = 1.0 / ws;
    const double q = nome(k);
    const double a = std::pow(10.0, Ap * 0.05);
    const double lambda = (1.0 / (N + N)) * std::log((a + 1.0) / (a - 1.0));
    const double sigma = seriesQuotient(oddSeries(q, [=](double n) { return std::sinh(n * lambda); }),
                                        evenSeries(q, [=](double n) { return std::cosh(n * lambda); }), q);
    const double sa = std::abs(sigma);
    const double W = std::sqrt((1.0 + k * sa * sa) * (1.0 + sigma * sigma / k));
    const int32_t pairs = order / 2;
    const bool isOdd = order % 2 != 0;
    *designGain = 1.0;
    for (int32_t i = 0; i < pairs; ++i) {
        const double mu = static_cast<double>(i) + (isOdd ? 1.0 : 0.5);
        const double Om =
            seriesQuotient(oddSeries(q, [=](double n) { return std::sin(n * pi * mu / N); }),
                           evenSeries(q, [=](double n) { return std::cos(n * pi * mu / N); }), q);
        const double V = std::sqrt((1.0 - k * Om * Om) * (1.0 - Om * Om / k));
        const double a0 = 1.0 / (Om * Om);
        const double d = 1.0 + sigma * sigma * Om * Om;
        const double b0 = ((sigma * V) * (sigma * V) + (Om * W) * (Om * W)) / (d * d);
        const double b1 = (2.0 * sa * V) / d;
        const double y = std::sqrt(ws * a0);
        zeros[i] = {0.0 * y, y};
        const double B = b1 * std::sqrt(ws);
        const double e = B * B - 4.0 * ws * b0;
        poles[i] = {-B / 2.0, std::sqrt(-e) / 2.0};
        *designGain = (b0 / a0) * *designGain;
    }
    if (isOdd) {
        poles[pairs] = {-sa * std::sqrt(ws), 0.0};
        zeros[pairs] = {std::numeric_limits<double>::infinity(), 0.0};
        *designGain = std::sqrt(ws) * sa * *designGain;
    } else {
        *designGain = std::pow(10.0, Ap * -0.05) * *designGain;
    }
    return 1;
}

} // namespace orva
