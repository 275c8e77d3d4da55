#include "schedule.h"

#include "failure.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace orva
{
namespace
{

const double least = 0.1;
const double most = 3;
enum { mostValues = 256 };

// A plain decimal number, of digits and a point, which is all of the text.
bool isNumber(const std::string &text, double &number)
{
    if (text.empty() || text.find_first_not_of("0123456789.") != std::string::npos)
        return false;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

// One word: speed or seconds:speed.
void add(Schedule &schedule, const std::string &word)
{
    const size_t colon = word.find(':');
    SpeedFrom next{0, 0};
    double speed = 0;
    if ((colon == std::string::npos && !schedule.empty()) ||
        (colon != std::string::npos && !isNumber(word.substr(0, colon), next.seconds)) ||
        !isNumber(word.substr(colon == std::string::npos ? 0 : colon + 1), speed))
        failUse("speed: \"" + word + "\" is not seconds:speed");
    if (!(speed >= least && speed <= most)) {
        char text[96];
        std::snprintf(text, sizeof text, "speed: %g is not from %g to %g", speed, least, most);
        failUse(text);
    }
    next.speed = static_cast<float>(speed);
    if (schedule.empty() && next.seconds > 0)
        schedule.push_back({0, 1});
    if (schedule.size() == mostValues)
        failUse("speed: more than " + std::to_string(mostValues) + " values");
    if (!schedule.empty() && next.seconds <= schedule.back().seconds)
        failUse("speed: the time of \"" + word + "\" does not come after the one before");
    schedule.push_back(next);
}

} // namespace

Schedule scheduleFrom(const std::string &text)
{
    const char *separators = " ,\t\n";
    Schedule schedule;
    size_t from = text.find_first_not_of(separators);
    while (from != std::string::npos) {
        const size_t to = text.find_first_of(separators, from);
        add(schedule, text.substr(from, to == std::string::npos ? to : to - from));
        from = text.find_first_not_of(separators, to);
    }
    if (schedule.empty())
        failUse("speed: no value is given");
    return schedule;
}

float speedAt(const Schedule &schedule, int64_t sample, double rate, int64_t &count)
{
    size_t at = 0;
    for (; at + 1 < schedule.size(); ++at) {
        const double left = std::round(schedule[at + 1].seconds * rate) - static_cast<double>(sample);
        if (left > 0) {
            count = left < static_cast<double>(count) ? static_cast<int64_t>(left) : count;
            break;
        }
    }
    return schedule[at].speed;
}

} // namespace orva
