// What a filter does to each frequency, computed from what it answers to a single 1.
#pragma once

#include <vector>

namespace orva
{

struct ResponseAt {
    double hertz = 0;
    double gainDb = 0;
    double phaseDegrees = 0; // from -180 to 180
    double delaySamples = 0; // the group delay: -dphase / dw
};

// H(w) = sum over n of h[n] e^-jwn at one frequency; its group delay is the real part of (sum of n h[n] e^-jwn) / H(w).
ResponseAt responseAt(const std::vector<float> &answer, double rate, double hertz);

// From rate / 4800 to half the rate, evenly on a logarithmic axis.
std::vector<ResponseAt> responseCurve(const std::vector<float> &answer, double rate, int points);

// Where the gain passes through 3.01 dB, half the power, below the greatest one.
std::vector<double> halfPowerPoints(const std::vector<float> &answer, double rate,
                                    const std::vector<ResponseAt> &curve);

} // namespace orva
