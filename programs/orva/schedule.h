// A speed that changes over time, given as text: "1.5", or with the seconds at which each value begins,
// "1 0.5:1.5 2:0.7".
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orva
{

struct SpeedFrom {
    double seconds;
    float speed;
};

// At least one, the first from 0 seconds on.
using Schedule = std::vector<SpeedFrom>;

// Reads the speeds, from 0.1 to 3, which blanks or commas separate. A first one without a time begins at 0; if it has a
// later time, 1 stands before it. Refuses, as used wrongly, what is no number, speeds out of range, times that do not rise,
// and more than 256 values.
Schedule scheduleFrom(const std::string &text);

// The speed for a sample; `count`, a number of samples from there on, is cut to those for which it holds.
float speedAt(const Schedule &schedule, int64_t sample, double rate, int64_t &count);

} // namespace orva
