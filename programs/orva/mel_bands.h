// Bands that are equally wide in mels, from 0 to half the rate.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace orva
{

struct MelBand {
    double hertz = 0; // its middle, in mels
    int64_t first = 0,
            end = 0; // the bins of a transform that fall into it; at least one, the nearest to its middle
};

// For a real transform of so many samples, which has samples / 2 + 1 bins.
std::vector<MelBand> melBands(int32_t count, double rate, int32_t samples);

// The loudest of the bins of a band.
float levelOf(const MelBand &band, std::span<const float> levels);

} // namespace orva
