// What a filter computes, as numbers.
#pragma once

#include <complex>
#include <string>
#include <vector>

namespace orva
{

// (b0 + b1 z^-1 + b2 z^-2 + ...) / (a0 + a1 z^-1 + a2 z^-2 + ...)
struct Section {
    std::vector<double> b, a;
};

// The sections that the filter of a text runs one after the other at a rate. Refuses, as used wrongly, a text that is none.
std::vector<Section> sectionsFrom(const std::string &text, int rate);

struct PolesAndZeros {
    std::vector<std::complex<double>> poles, zeros; // both of each pair; what cancels at 0 is left out
};

PolesAndZeros polesAndZerosOf(const std::vector<Section> &sections);

// The roots of a polynomial whose coefficients are given from the highest power on.
std::vector<std::complex<double>> rootsOf(std::vector<double> coefficients);

} // namespace orva
