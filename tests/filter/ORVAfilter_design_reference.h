// The way from a specification to sections in the plainest form: roots in vectors, distances kept one by one and
// multiplied at the end, sums and products of complex numbers written out in their parts.
#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

namespace reference
{

using Complex = std::complex<double>;
using Roots = std::vector<Complex>;

constexpr double circle = 3.141592653589793; // half of it
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr Complex quarter = {6.123233995736766e-17, 1.0};

struct Lists {
    Roots poles, zeros;
    double gain;
};

struct Demand {
    double ws, Ap, As;
};

inline Complex times(Complex a, Complex b)
{
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

inline Complex scaled(double factor, Complex a)
{
    return {factor * a.real(), factor * a.imag()};
}

inline bool onAxis(Complex a)
{
    return a.imag() == 0.0;
}

// ---- Orders

inline int32_t cut(double x)
{
    return std::isfinite(x) && std::fabs(std::trunc(x)) < 2147483648.0 ? static_cast<int32_t>(std::trunc(x))
                                                                       : INT32_MIN;
}

inline double powerRatio(Demand d)
{
    return (std::pow(10.0, d.As / 10.0) - 1.0) / (std::pow(10.0, d.Ap / 10.0) - 1.0);
}

inline bool isComplete(Demand d)
{
    return d.ws > 0.0 && d.Ap > 0.0 && d.As > 0.0;
}

inline int32_t butterworthOrder(Demand d)
{
    if (!isComplete(d))
        return -1;
    const auto over = static_cast<float>(std::log10(powerRatio(d)));
    const double under = std::log10(d.ws) + std::log10(d.ws);
    return cut(static_cast<double>(static_cast<float>(static_cast<double>(over) / under))) + 1;
}

inline int32_t chebyshevOrder(Demand d)
{
    if (!isComplete(d))
        return -1;
    const auto over = static_cast<float>(std::acosh(std::sqrt(powerRatio(d))));
    return cut(static_cast<double>(static_cast<float>(static_cast<double>(over) / std::acosh(d.ws)))) + 1;
}

inline double nomeOf(double ws)
{
    const double modulus = 1.0 / ws;
    const double complementary = std::sqrt(1.0 - modulus * modulus);
    const double root = std::sqrt(complementary);
    const double first = ((1.0 - root) * 0.5) / (1.0 + root);
    double sum = first + 2.0 * std::pow(first, 5.0);
    sum = sum + 15.0 * std::pow(first, 9.0);
    return sum + 150.0 * std::pow(first, 13.0);
}

inline int32_t ellipticOrder(Demand d)
{
    const double ratio = (std::pow(10.0, d.As * 0.1) - 1.0) / (std::pow(10.0, d.Ap * 0.1) - 1.0);
    return cut(std::log10(16.0 * ratio) / std::log10(1.0 / nomeOf(d.ws)) + 1.0);
}

// ---- Prototypes

// From near 0 upward; that of the real pole of an odd order is the last.
inline std::vector<double> angles(int N)
{
    std::vector<double> all;
    for (int i = 1; i <= N; i += 2)
        all.push_back((i * circle) / (2.0 * N));
    return all;
}

inline Lists butterworth(Demand d, int N)
{
    const auto eps = static_cast<float>(std::sqrt(std::pow(10.0, d.Ap / 10.0) - 1.0));
    const double radius = std::pow(static_cast<double>(eps), -1.0 / N);
    Lists lists = {{}, Roots(static_cast<size_t>(N), infinite), 1.0};
    for (double theta : angles(N)) {
        const bool isLast = N % 2 == 1 && lists.poles.size() == static_cast<size_t>(N / 2);
        const Complex p(-radius * std::sin(theta), isLast ? 0.0 : radius * std::cos(theta));
        lists.poles.push_back(p);
        lists.gain = (isLast ? std::abs(p) : std::abs(p) * std::abs(p)) * lists.gain;
    }
    return lists;
}

inline Lists chebyshev(Demand d, int N)
{
    const double eps = std::sqrt(std::pow(10.0, d.Ap / 10.0) - 1.0);
    const double phi = (1.0 / N) * std::asinh(1.0 / eps);
    Lists lists = {{}, Roots(static_cast<size_t>(N), infinite), 1.0};
    for (double theta : angles(N)) {
        const bool isLast = N % 2 == 1 && lists.poles.size() == static_cast<size_t>(N / 2);
        const Complex p(std::sin(theta) * std::sinh(phi), isLast ? 0.0 : std::cosh(phi) * std::cos(theta));
        lists.poles.push_back(p);
        lists.gain = (isLast ? std::abs(p) : std::abs(p) * std::abs(p)) * lists.gain;
    }
    if (N % 2 == 0)
        lists.gain = std::pow(10.0, -d.Ap / 20.0) * lists.gain;
    return lists;
}

inline Lists chebyshevII(Demand d, int N)
{
    double ws = d.ws;
    double tenths = d.As / 10.0;
    if (d.As > 0.0 && d.ws <= 0.0) {
        ws = std::cosh(std::acosh(std::sqrt(powerRatio(d))) / N);
    } else if (d.As <= 0.0) {
        const double c = std::cosh(N * std::acosh(ws));
        double decibels = 10.0 * std::log10(std::pow(10.0, d.Ap / 10.0) - 1.0);
        decibels = decibels * c;
        decibels = decibels * c;
        tenths = (decibels + 1.0) / 10.0;
    }
    const double eps = 1.0 / std::sqrt(std::pow(10.0, tenths) - 1.0);
    const double phi = (1.0 / N) * std::asinh(1.0 / eps);
    Lists lists = {{}, {}, 1.0};
    for (double theta : angles(N)) {
        if (N % 2 == 1 && lists.poles.size() == static_cast<size_t>(N / 2)) {
            lists.poles.emplace_back(ws / (std::sin(theta) * std::sinh(phi)), 0.0);
            lists.zeros.emplace_back(infinite, 0.0);
            lists.gain = std::abs(lists.poles.back()) * lists.gain;
            continue;
        }
        const Complex z(ws * 0.0 / std::cos(theta), ws / std::cos(theta));
        const Complex below(-(std::sin(theta) * std::sinh(phi)), -(std::cos(theta) * std::cosh(phi)));
        const Complex p = Complex(ws, 0.0) / below;
        lists.zeros.push_back(z);
        lists.poles.push_back(p);
        lists.gain = (std::abs(p) * std::abs(p) / (std::abs(z) * std::abs(z))) * lists.gain;
    }
    return lists;
}

// Both series of the elliptic design, `f` being sinh, cosh, sin or cos of a multiple of the argument.
template <class F> double upperSeries(double q, F f)
{
    double sum = f(1.0);
    for (int m = 1;; ++m) {
        const double sign = m % 2 == 0 ? 1.0 : -1.0;
        const double next = sum + std::pow(q, static_cast<double>((m + 1) * m)) * sign * f(2.0 * m + 1.0);
        const double change = std::fabs(sum - next) / sum;
        sum = next;
        if (!(change >= 1e-20))
            return sum;
    }
}

template <class F> double lowerSeries(double q, F f)
{
    double sum = -q * f(2.0);
    for (int m = 2;; ++m) {
        const double sign = m % 2 == 0 ? 1.0 : -1.0;
        const double next = sum + std::pow(q, static_cast<double>(m * m)) * sign * f(2.0 * m);
        const double change = std::fabs(sum - next) / sum;
        sum = next;
        if (!(change >= 1e-20))
            return sum;
    }
}

inline Lists elliptic(Demand d, int N)
{
    const double k = 1.0 / d.ws;
    const double q = nomeOf(d.ws);
    const double a = std::pow(10.0, d.Ap * 0.05);
    const double Lambda = (1.0 / (N + N)) * std::log((a + 1) / (a - 1));
    const auto quotient = [&](double upper, double lower) {
        return (upper * (2 * std::pow(q, 0.25))) / (2 * lower + 1);
    };
    const double sigma = quotient(upperSeries(q, [&](double n) { return std::sinh(n * Lambda); }),
                                  lowerSeries(q, [&](double n) { return std::cosh(n * Lambda); }));
    const double sa = std::fabs(sigma);
    const double W = std::sqrt((1 + k * sa * sa) * (1 + sigma * sigma / k));
    Lists lists = {{}, {}, 1.0};
    for (int i = 0; i < N / 2; ++i) {
        const double mu = N % 2 == 1 ? i + 1.0 : i + 0.5;
        const double Om = quotient(upperSeries(q, [&](double n) { return std::sin(n * circle * mu / N); }),
                                   lowerSeries(q, [&](double n) { return std::cos(n * circle * mu / N); }));
        const double V = std::sqrt((1 - k * Om * Om) * (1 - Om * Om / k));
        const double a0 = 1 / (Om * Om);
        const double den = 1 + sigma * sigma * Om * Om;
        const double sigmaV = sigma * V;
        const double OmW = Om * W;
        const double b0 = (sigmaV * sigmaV + OmW * OmW) / (den * den);
        const double B = ((2 * sa * V) / den) * std::sqrt(d.ws);
        const double e = B * B - 4 * d.ws * b0;
        lists.zeros.emplace_back(0.0, std::sqrt(d.ws * a0));
        lists.poles.emplace_back(-B / 2, std::sqrt(-e) / 2);
        lists.gain = (b0 / a0) * lists.gain;
    }
    if (N % 2 == 1) {
        lists.poles.emplace_back(-sa * std::sqrt(d.ws), 0.0);
        lists.zeros.emplace_back(infinite, 0.0);
        lists.gain = std::sqrt(d.ws) * sa * lists.gain;
    } else {
        lists.gain = std::pow(10.0, d.Ap * -0.05) * lists.gain;
    }
    return lists;
}

// ---- Transforms

struct Moved {
    Roots roots;
    std::vector<double> before, after;
};

inline double product(const std::vector<double> &factors)
{
    return std::accumulate(factors.begin(), factors.end(), 1.0, std::multiplies<>());
}

inline double away(Complex point, Complex root)
{
    const Complex d(point.real() - root.real(), point.imag() - root.imag());
    if (onAxis(root))
        return std::abs(d);
    const Complex e(point.real() - root.real(), point.imag() + root.imag());
    return std::abs(d) * std::abs(e);
}

template <class Move> Lists moved(const Lists &lists, Move move)
{
    const Moved poles = move(lists.poles);
    const Moved zeros = move(lists.zeros);
    const double above = product(poles.after) * product(zeros.before);
    const double below = product(zeros.after) * product(poles.before);
    return {poles.roots, zeros.roots, (above / below) * lists.gain};
}

inline Lists digital(const Lists &lists)
{
    return moved(lists, [](const Roots &roots) {
        Moved out;
        for (Complex r : roots) {
            const double modulus = std::abs(r);
            if (!std::isfinite(modulus)) {
                out.roots.emplace_back(-1.0, 0.0);
                out.after.push_back(2.0);
                continue;
            }
            out.before.push_back(modulus);
            if (!onAxis(r))
                out.before.push_back(modulus);
            out.roots.push_back(Complex(1.0 + r.real(), r.imag()) / Complex(1.0 - r.real(), -r.imag()));
            out.after.push_back(away({1.0, 0.0}, out.roots.back()));
        }
        return out;
    });
}

inline Complex inside(Complex z)
{
    return std::abs(z) > 1.0 ? Complex(1.0, 0.0) / z : z;
}

inline Complex edgeOf(float f)
{
    const double wide = static_cast<double>(f);
    return std::exp(Complex(wide * 0.0 * circle, wide * circle));
}

inline Lists toCutoff(const Lists &lists, bool isHigh, float cutoff)
{
    const double w = static_cast<double>(cutoff) * circle;
    const double minus = (circle / 2 - w) * 0.5;
    const double plus = (circle / 2 + w) * 0.5;
    const double alpha = isHigh ? -std::cos(minus) / std::cos(plus) : std::sin(minus) / std::sin(plus);
    return moved(lists, [=](const Roots &roots) {
        Moved out;
        for (Complex r : roots) {
            out.before.push_back(away(quarter, r));
            Complex above(r.real() + alpha, r.imag());
            if (isHigh)
                above = {-above.real(), -above.imag()};
            out.roots.push_back(inside(above / Complex(1.0 + alpha * r.real(), alpha * r.imag())));
            out.after.push_back(away(edgeOf(cutoff), out.roots.back()));
        }
        return out;
    });
}

inline Lists toBand(const Lists &lists, bool isReject, float lower, float upper)
{
    const double w1 = static_cast<double>(lower) * circle;
    const double w2 = static_cast<double>(upper) * circle;
    const double alpha = std::cos((w1 + w2) * 0.5) / std::cos((w2 - w1) * 0.5);
    const double t = std::tan((w2 - w1) * 0.5);
    const double T = 0.9999999999999999;
    const double K = isReject ? T * t : T / t;
    const double c1 = isReject ? (alpha + alpha) / (K + 1) : -(((alpha + alpha) * K) / (K + 1));
    const double c2 = isReject ? (1 - K) / (K + 1) : (K - 1) / (K + 1);
    return moved(lists, [=](const Roots &roots) {
        Moved out;
        const auto keep = [&](Complex z) {
            out.roots.push_back(inside(z));
            out.after.push_back(away(edgeOf(lower), out.roots.back()));
        };
        for (Complex p : roots) {
            out.before.push_back(away(quarter, p));
            const double x = p.real();
            const double y = p.imag();
            const Complex u = isReject ? Complex(c1 * (1 - x), c1 * -y) : Complex(c1 * (x + 1), c1 * y);
            const Complex v = isReject ? Complex(c2 * x - 1, c2 * y) : Complex(1 + c2 * x, c2 * y);
            const Complex m = isReject ? Complex(x - c2, y) : Complex(x + c2, y);
            const Complex square = times(u, u);
            const Complex corner = times(scaled(4, v), m);
            const Complex D(square.real() - corner.real(), square.imag() - corner.imag());
            if (onAxis(p) && D.real() < 0.0) {
                const Complex r = std::sqrt(Complex(-D.real(), -D.imag()));
                keep(Complex(-r.imag() - u.real(), r.real() - u.imag()) / scaled(2, v));
                continue;
            }
            const Complex r = std::sqrt(D);
            keep(Complex(r.real() - u.real(), r.imag() - u.imag()) / scaled(2, v));
            keep(Complex(-u.real() - r.real(), -u.imag() - r.imag()) / scaled(2, v));
        }
        return out;
    });
}

// ---- Sections

inline std::vector<double> sections(const Lists &lists, int rootCount, float gain)
{
    const int count = rootCount / 2 + rootCount % 2;
    const double g = std::pow(static_cast<double>(gain) * lists.gain, 1.0 / count);
    std::vector<double> records;
    size_t p = 0, z = 0;
    for (int s = 0; s < count; ++s) {
        const Complex pole = lists.poles.at(p++);
        const Complex zero = lists.zeros.at(z++);
        if (s == rootCount / 2) {
            records.insert(records.end(), {-pole.real(), 0.0, g, (-g) * zero.real(), 0.0});
            break;
        }
        if (onAxis(pole)) {
            const double other = lists.poles.at(p++).real();
            records.insert(records.end(), {(-pole.real()) - other, pole.real() * other});
        } else {
            const double square = pole.real() * pole.real() + pole.imag() * pole.imag();
            records.insert(records.end(), {pole.real() * -2.0, square});
        }
        records.push_back(g);
        if (onAxis(zero)) {
            const double other = lists.zeros.at(z++).real();
            records.insert(records.end(), {(zero.real() + other) * (-g), (zero.real() * g) * other});
        } else {
            const double square = zero.real() * zero.real() + zero.imag() * zero.imag();
            records.insert(records.end(), {(g * -2.0) * zero.real(), square * g});
        }
    }
    return records;
}

// ---- All of it

enum Approximation { isButterworth, isChebyshev, isChebyshevII, isElliptic };

inline Lists prototype(Approximation approximation, Demand d, int N)
{
    Lists (*const designs[])(Demand, int) = {butterworth, chebyshev, chebyshevII, elliptic};
    return designs[approximation](d, N);
}

inline int32_t estimate(Approximation approximation, Demand d)
{
    int32_t (*const estimators[])(Demand) = {butterworthOrder, chebyshevOrder, chebyshevOrder, ellipticOrder};
    return estimators[approximation](d);
}

// `kind` as the filter holds it; `upper` only for the band types.
inline std::vector<double> records(int kind, Approximation approximation, Demand d, int N, float lower,
                                   float upper, float gain)
{
    const Lists half = digital(prototype(approximation, d, N));
    if (kind < 2)
        return sections(toCutoff(half, kind == 1, lower), N, gain);
    return sections(toBand(half, kind == 3, lower, upper), 2 * N, gain);
}

} // namespace reference
