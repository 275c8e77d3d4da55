// What passes through FFTW, which picks its code by processor: no hash, but its distance from the definition in double.
#pragma once

#include <vector>

namespace bits
{

struct Distance {
    const char *name;
    double largest; // over all values, where the largest value is 1
    double allowed;
};

std::vector<Distance> distances();

} // namespace bits
