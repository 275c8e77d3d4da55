// A picture of two spectrograms, one below the other: a sound before and after something was done to it.
#pragma once

#include "drawing/picture.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orva
{

class Comparison
{
public:
    // Without a path there is no picture, and nothing that follows has an effect.
    explicit Comparison(const PictureOptions &options);

    bool isDrawn() const
    {
        return file.has_value();
    }

    // Ready for columns whose value i stands at i * step hertz.
    void begin(double rate, double step, size_t values);

    // Takes in levels of the next channel of a column, in dB re a sine of full scale; the loudest of all channels count.
    void before(std::span<const float> levels);
    void after(std::span<const float> levels);

    // The column is complete.
    void next();

    // The last column once more.
    void repeat();

    // Draws `range` dB; the first column is centred on second `first`, and the others follow `step` after each other.
    void save(const std::string &title, const std::string &subtitle, double seconds, double first,
              double step, double range);

private:
    std::optional<PictureFile> file;
    std::optional<LevelGrid> grids[2];
    std::vector<float> levels[2]; // of the present column
    double top = 0;               // hertz
    bool started = false;         // the column has a channel
};

} // namespace orva
