// Responses of designed filters against those of SciPy's designs.
#include "filter/ORVAfilter_design_reference.h"
#include "filter/ORVAfilter_designed.h"
#include "filter/ORVAfilter_scipy_table.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace
{

// The largest difference of the attenuations, in dB; infinite where there is no filter.
double deviation(const ScipyResponse &row)
{
    const auto records = recordsOf(create(row.text));
    if (records.empty())
        return INFINITY;
    double largest = 0.0;
    for (size_t i = 0; i < std::size(scipyFrequencies); ++i)
        largest =
            std::max(largest, std::fabs(attenuation(records, scipyFrequencies[i]) - row.attenuations[i]));
    return largest;
}

// What the closed form of the elliptic design leaves out, in dB. Each factor is half as large again as what it is
// at most in the table.
double ellipticTolerance(const ScipyResponse &row)
{
    const double q = reference::nomeOf(row.selectivity);
    const double rounding = 1e-9;
    // The poles are placed as for a stopband without end: k1, the ratio of the ripples, as if it were 0.
    const double ofRipples = 30.0 * 16.0 * std::pow(q, row.order);
    // Denominators end before their term of q^9 where they begin below zero.
    const double ofDenominator = 500.0 * std::pow(q, 9.0);
    // In odd multiples of 3 one numerator has the term sin(pi), and ends there: before its term of q^6.
    const double ofNumerator = row.order % 6 == 3 ? 350.0 * std::pow(q, 6.0) : 0.0;
    return rounding + ofRipples + ofDenominator + ofNumerator;
}

} // namespace

TEST(DesignedFilter, AgreesWithSciPy)
{
    const std::map<std::string_view, double> tolerances = {
        {"butterworth", 5.2e-7}, // its eps is rounded to float: 20 log10(1 + 2^-24)
        {"chebyshev", 1e-9},     // the order of operations, nothing else
        {"chebyshev2", 1e-9},
    };
    for (const auto &row : scipyResponses) {
        const auto tolerance = tolerances.find(row.approximation);
        EXPECT_LE(deviation(row), tolerance != tolerances.end() ? tolerance->second : ellipticTolerance(row))
            << row.text;
    }
}
