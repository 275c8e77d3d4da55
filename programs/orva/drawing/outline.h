// The outline of a sound: the least and the greatest sample of one stretch after the other. The stretches double in length
// whenever there get to be too many, so memory stays the same however long the sound.
#pragma once

#include "picture.h"

#include <cstdint>
#include <vector>

namespace orva
{

class Outline
{
public:
    // Takes in frames, channels interleaved; the outline is that of all channels together.
    void add(const float *samples, int64_t frames, int channels);

    // Draws it in a panel of its own, whose axes reach to these seconds and as far as its greatest value, or to 1 where all
    // is silent; what lies after that is left out. The label is that of the vertical axis.
    void draw(Picture &picture, size_t panel, int rate, double seconds, const std::string &label) const;

    int64_t frames() const
    {
        return total;
    }

    // Frames of a stretch; the last one may have fewer.
    int64_t stretch() const
    {
        return int64_t{1} << doublings;
    }

    // Of each stretch.
    std::vector<float> least, most;

private:
    void merge();

    int doublings = 0;
    int64_t total = 0;
};

} // namespace orva
