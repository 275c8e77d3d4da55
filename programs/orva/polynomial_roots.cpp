#include "filter_sections.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace orva
{
namespace
{

using Complex = std::complex<double>;

// p and p' at z by Horner's rule, coefficients from the highest power on.
std::pair<Complex, Complex> valueAndSlope(const std::vector<double> &coefficients, Complex z)
{
    Complex value = 0;
    Complex slope = 0;
    for (const double coefficient : coefficients) {
        slope = slope * z + value;
        value = value * z + coefficient;
    }
    return {value, slope};
}

// p / p'. Outside the unit circle, where powers overflow, by the reversed polynomial q in y = 1 / z:
//     p(z) = z^n q(y),  p / p' = z / (n - y q'(y) / q(y))
Complex newtonStep(const std::vector<double> &forward, const std::vector<double> &reversed, Complex z)
{
    if (std::abs(z) <= 1) {
        const auto [value, slope] = valueAndSlope(forward, z);
        return value / slope;
    }
    const Complex y = 1.0 / z;
    const auto [value, slope] = valueAndSlope(reversed, y);
    if (value == 0.0)
        return 0;
    return z / (static_cast<double>(forward.size() - 1) - y * slope / value);
}

std::vector<Complex> quadraticRoots(double a, double b, double c)
{
    const double discriminant = b * b - 4 * a * c;
    if (discriminant < 0) {
        const Complex root(-b / (2 * a), std::sqrt(-discriminant) / (2 * std::fabs(a)));
        return {root, std::conj(root)};
    }
    const double larger = -(b + std::copysign(std::sqrt(discriminant), b)) / 2; // nothing cancels
    return {larger / a, c / larger};
}

// All roots at a time, each by Newton's step, corrected by how near the others are: O. Aberth, "Iteration methods for
// finding all zeros of a polynomial simultaneously", Math. Comp. 27 (1973).
std::vector<Complex> manyRoots(const std::vector<double> &forward)
{
    const size_t count = forward.size() - 1;
    const std::vector<double> reversed(forward.rbegin(), forward.rend());
    const double radius =
        std::pow(std::fabs(forward.back() / forward.front()), 1.0 / static_cast<double>(count));
    std::vector<Complex> roots;
    for (size_t i = 0; i < count; ++i)
        roots.push_back(std::polar(radius, (2 * std::numbers::pi * static_cast<double>(i) + 0.7) /
                                               static_cast<double>(count)));
    bool moves = true;
    for (int round = 0; moves && round < 500; ++round) {
        moves = false;
        for (size_t i = 0; i < count; ++i) {
            const Complex step = newtonStep(forward, reversed, roots[i]);
            Complex others = 0;
            for (size_t j = 0; j < count; ++j)
                if (j != i && roots[j] != roots[i])
                    others += 1.0 / (roots[i] - roots[j]);
            const Complex move = step / (1.0 - step * others);
            if (!std::isfinite(move.real()) || !std::isfinite(move.imag()))
                continue;
            roots[i] -= move;
            moves = moves || std::abs(move) > 4 * std::numeric_limits<double>::epsilon() * std::abs(roots[i]);
        }
    }
    return roots;
}

} // namespace

std::vector<Complex> rootsOf(std::vector<double> coefficients)
{
    const auto isNone = [](double coefficient) { return coefficient == 0; };
    coefficients.erase(coefficients.begin(), std::ranges::find_if_not(coefficients, isNone));
    std::vector<Complex> roots;
    while (coefficients.size() > 1 && coefficients.back() == 0) {
        coefficients.pop_back();
        roots.emplace_back(0);
    }
    std::vector<Complex> others;
    if (coefficients.size() == 2)
        others = {-coefficients[1] / coefficients[0]};
    else if (coefficients.size() == 3)
        others = quadraticRoots(coefficients[0], coefficients[1], coefficients[2]);
    else if (coefficients.size() > 3)
        others = manyRoots(coefficients);
    for (Complex &root : others)
        if (std::fabs(root.imag()) < 1e-7 * std::abs(root)) // a double root is no more exact than that
            root = root.real();
    roots.insert(roots.end(), others.begin(), others.end());
    return roots;
}

} // namespace orva
