// A curve given at a few points, a frequency in Hz and a gain in dB each, that goes on over the logarithm of the frequency:
// along a cubic spline, natural at both ends, and along straight lines. Outside the points the gain at the end stays.
#pragma once

#include <string>
#include <vector>

namespace orva
{

struct Calibration {
    std::vector<double> hertz, decibels; // of the points
    std::vector<float> x, y, bends;      // log10 Hz, dB, second derivatives
};

// From "HZ DB; HZ DB; ..."; refuses, as used wrongly, fewer than 2 points, more than 256, and frequencies that are not above
// 0 or do not rise from point to point.
Calibration calibrationFrom(const std::string &text);

float splineAt(const Calibration &curve, double hertz);
float lineAt(const Calibration &curve, double hertz);

} // namespace orva
