// The filters of the zero-order hold: elliptic low-passes of 1 dB passband ripple and 60 dB attenuation, in direct
// form. The passband ends at 0.95 rateLow / 2 (at 0.8967 rateLow / 2 for 96000 to 8000), the stopband begins at
// rateLow / 2 or before. The gain at zero frequency is 0 dB for odd orders and -1 dB for even ones.
//
// Coefficients of this form are ill-conditioned where poles crowd: in double the rows of order 10, whose passbands
// are the narrowest, carry rounding noise up to 1e-4 of the peak.
//
// Source: S. Darlington, "Synthesis of reactance 4-poles which produce prescribed insertion loss characteristics",
// J. Math. Phys. 18 (1939), through the bilinear transform.
#pragma once

#include <cstdint>

namespace orva
{

// One pair of rates. The filter runs at `rateHigh`.
struct FilterSetRow {
    int32_t rateHigh, rateLow;
    const double *denominator, *numerator; // of `count` coefficients each; the denominator begins with 1
    int32_t count;                         // the order plus 1
};

extern const FilterSetRow FilterSet[35]; // the first row with the pair holds

} // namespace orva
