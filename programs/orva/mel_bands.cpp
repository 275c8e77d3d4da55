#include "mel_bands.h"

#include <orva/ORVAutil.h>

#include <algorithm>
#include <cmath>

namespace orva
{

std::vector<MelBand> melBands(int32_t count, double rate, int32_t samples)
{
    const double step = ORVAUTIL_Freq2Mels(rate / 2) / count;
    const double bin = rate / samples;
    const int64_t bins = samples / 2 + 1;
    const auto firstFrom = [&](double mels) { // the first bin that is not below
        return std::min(static_cast<int64_t>(std::ceil(ORVAUTIL_Mels2Freq(mels) / bin)), bins);
    };
    std::vector<MelBand> bands;
    for (int32_t i = 0; i < count; ++i) {
        MelBand band{ORVAUTIL_Mels2Freq((i + 0.5) * step), firstFrom(i * step),
                     i + 1 < count ? firstFrom((i + 1) * step) : bins};
        if (band.first >= band.end) {
            band.first = std::min(static_cast<int64_t>(band.hertz / bin + 0.5), bins - 1);
            band.end = band.first + 1;
        }
        bands.push_back(band);
    }
    return bands;
}

float levelOf(const MelBand &band, std::span<const float> levels)
{
    return *std::max_element(levels.begin() + band.first, levels.begin() + band.end);
}

} // namespace orva
