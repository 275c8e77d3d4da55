#include "comparison.h"

#include <algorithm>
#include <cmath>

namespace orva
{
namespace
{

const PictureLayout layout{{230, 230}, true, false};

void takeLoudest(std::vector<float> &loudest, std::span<const float> levels)
{
    for (size_t i = 0; i < loudest.size(); ++i)
        loudest[i] = std::max(loudest[i], levels[i]);
}

} // namespace

Comparison::Comparison(const PictureOptions &options)
{
    if (!options.path.empty())
        file.emplace(options);
}

void Comparison::begin(double rate, double step, size_t values)
{
    if (!file)
        return;
    top = rate / 2;
    for (size_t panel = 0; panel < 2; ++panel) {
        grids[panel].emplace(gridSizeOf(*file, layout, panel), axisFrequency(0, top, false), step,
                             static_cast<int64_t>(values));
        levels[panel].assign(values, -HUGE_VALF);
    }
}

void Comparison::before(std::span<const float> channel)
{
    if (!started)
        for (std::vector<float> &panel : levels)
            std::fill(panel.begin(), panel.end(), -HUGE_VALF);
    started = true;
    takeLoudest(levels[0], channel);
}

void Comparison::after(std::span<const float> channel)
{
    takeLoudest(levels[1], channel);
}

void Comparison::next()
{
    started = false;
    repeat();
}

void Comparison::repeat()
{
    for (size_t panel = 0; file && panel < 2; ++panel)
        grids[panel]->add(levels[panel]);
}

void Comparison::save(const std::string &title, const std::string &subtitle, double seconds, double first,
                      double step, double range)
{
    if (!file)
        return;
    Picture picture(*file, layout, title, subtitle);
    const char *const labels[] = {"In (dB re full-scale sine)", "Out (dB re full-scale sine)"};
    for (size_t panel = 0; panel < 2; ++panel) {
        picture.panel(panel, axisTime(0, seconds), axisFrequency(0, top, false));
        picture.image(panel, *grids[panel], first - step / 2, step, -range, 0, labels[panel]);
    }
    picture.save();
}

} // namespace orva
