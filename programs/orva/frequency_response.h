// What a filter does to each frequency, computed from its sections.
#pragma once

#include "filter_sections.h"

#include <vector>

namespace orva
{

struct ResponseAt {
    double hertz = 0;
    double gainDb = 0;
    double phaseDegrees = 0; // from -180 to 180
    double delaySamples = 0; // the group delay: -dphase / dw
};

// H(w) is the product of the sections' B / A, with P(w) = sum over k of p[k] e^-jwk; the group delay is the sum of
// Re((sum of k p[k] e^-jwk) / P(w)), of B less that of A. Where B is 0 the gain is -infinity, and phase and delay are not a
// number.
ResponseAt responseAt(const std::vector<Section> &sections, double rate, double hertz);

// From rate / 4800 to half the rate, evenly on a logarithmic axis.
std::vector<ResponseAt> responseCurve(const std::vector<Section> &sections, double rate, int points);

// Where the gain passes through 3.01 dB, half the power, below the greatest one.
std::vector<double> halfPowerPoints(const std::vector<Section> &sections, double rate,
                                    const std::vector<ResponseAt> &curve);

} // namespace orva
