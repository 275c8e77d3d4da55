// Designed filters and what can be seen of them: their records, and their response, evaluated in double.
#pragma once

#include "filter/ORVAfilter_internal.h"
#include "filter/ORVAfilter_reference.h"

#include <cmath>
#include <complex>
#include <string>
#include <vector>

inline Filter create(const std::string &text)
{
    return Filter(ORVA_CreateFilter("%s", text.c_str()));
}

inline const orva::_DFIISOSstate *cascadeOf(const Filter &filter)
{
    return static_cast<const orva::_DFIISOSstate *>(filter->state);
}

// a1, a2, b0, b1, b2 of each section; none for no filter.
inline std::vector<double> recordsOf(const Filter &filter)
{
    if (filter == nullptr)
        return {};
    const auto *state = cascadeOf(filter);
    return std::vector<double>(state->coefs, state->coefs + 5 * state->numBiquads);
}

// In dB, at f on the scale where 1 is half the sampling rate.
inline double attenuation(const std::vector<double> &records, double f)
{
    const std::complex<double> delay = std::polar(1.0, -f * 3.141592653589793);
    double magnitude = 1.0;
    for (size_t i = 0; i < records.size(); i += 5)
        magnitude *= std::abs(records[i + 2] + delay * (records[i + 3] + delay * records[i + 4])) /
                     std::abs(1.0 + delay * (records[i] + delay * records[i + 1]));
    return -20.0 * std::log10(magnitude);
}

// The triangle of a1 and a2 in which both poles of a section lie inside the unit circle.
inline bool isStable(const std::vector<double> &records)
{
    for (size_t i = 0; i < records.size(); i += 5)
        if (!(std::fabs(records[i + 1]) < 1.0) || !(std::fabs(records[i]) < 1.0 + records[i + 1]))
            return false;
    return true;
}
