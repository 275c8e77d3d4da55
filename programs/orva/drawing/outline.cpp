#include "outline.h"

#include <algorithm>
#include <cmath>

namespace orva
{
namespace
{

enum { mostStretches = 4096 };

} // namespace

void Outline::merge()
{
    for (size_t i = 0; i < mostStretches / 2; ++i) {
        least[i] = std::min(least[2 * i], least[2 * i + 1]);
        most[i] = std::max(most[2 * i], most[2 * i + 1]);
    }
    least.resize(mostStretches / 2);
    most.resize(mostStretches / 2);
    ++doublings;
}

void Outline::add(const float *samples, int64_t frames, int channels)
{
    for (; frames > 0; --frames, ++total) {
        if (total >> doublings == mostStretches)
            merge();
        const auto place = static_cast<size_t>(total >> doublings);
        if (place == least.size()) {
            least.push_back(*samples);
            most.push_back(*samples);
        }
        for (int channel = 0; channel < channels; ++channel, ++samples) {
            least[place] = std::min(least[place], *samples);
            most[place] = std::max(most[place], *samples);
        }
    }
}

void Outline::draw(Picture &picture, size_t panel, int rate, double seconds, const std::string &label) const
{
    const double width = static_cast<double>(stretch()) / rate;
    double peak = 0;
    std::vector<double> x;
    std::vector<double> y;
    for (size_t i = 0; i < least.size(); ++i) {
        x.insert(x.end(), 2, static_cast<double>(i) * width);
        y.push_back(static_cast<double>(least[i]));
        y.push_back(static_cast<double>(most[i]));
        peak = std::max({peak, y.back(), -*(y.end() - 2)});
    }
    const double top = peak > 0 ? peak : 1;
    picture.panel(panel, axisTime(0, seconds), axisLinear(-top, top, label));
    picture.curve(panel, x, y);
}

} // namespace orva
