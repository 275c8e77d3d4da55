// Time scaling.
#include "families.h"
#include "numbers.h"

#include <kett/KTmem.h>
#include <orva/ORVAsolafs.h>

#include <algorithm>

namespace bits
{
namespace
{

// A tone of a period that changes, with noise on it: something that a search finds likeness in.
std::vector<float> pitched(Numbers &numbers, size_t length)
{
    std::vector<float> samples(length);
    int32_t period = 80, place = 0;
    for (float &x : samples) {
        if (++place >= period) {
            place = 0;
            period = std::clamp(period + numbers.integer(-3, 3), 40, 200);
        }
        const float saw = static_cast<float>(place - period / 2) * 0x1p-7f;
        x = saw * (numbers.sample() * 0.125f + 1.0f);
    }
    return samples;
}

} // namespace

void timeScaling(Digest &results)
{
    constexpr struct {
        int32_t frameMs;
        int32_t rate;
        int32_t stride;
    } streams[] = {{20, 8000, 1},  {20, 44100, 2}, {30, 16000, 1},
                   {10, 48000, 3}, {25, 11025, 1}, {40, 22050, 2}};
    Numbers numbers(17);
    for (const auto &stream : streams) {
        ORVA_SOLAFS *scaler = ORVA_SolafsCreate(stream.frameMs, stream.rate, stream.stride);
        const auto voice = pitched(numbers, 40000);
        const auto stride = static_cast<size_t>(stream.stride);
        for (size_t at = 0; at < voice.size();) {
            const size_t count = std::min(numbers.size(1, 2000), voice.size() - at);
            const int32_t offset = numbers.integer(0, stream.stride - 1);
            std::vector<float> block(count * stride);
            for (size_t i = 0; i < count; ++i)
                block[i * stride + static_cast<size_t>(offset)] =
                    numbers.integer(0, 500) == 0 ? numbers.finite() : voice[at + i];
            const float speed = static_cast<float>(numbers.integer(16, 160)) * 0x1p-6f;
            const int32_t taken =
                ORVA_SolafsInputData(scaler, offset, block.data(), static_cast<int32_t>(count), speed);
            results.add(taken);
            std::vector<float> output(6000 * stride);
            results.add(ORVA_SolafsOutputData(scaler, offset, output.data(), numbers.integer(500, 6000)));
            results.add(output);
            results.add(ORVA_SolafsTranslateCursorPosition(scaler, numbers.integer(0, 50000)));
            at += static_cast<size_t>(taken) + 1;
        }
        ORVA_SolafsDestroy(scaler);
    }
    KTMEM_DisposeDisplayed();
}

} // namespace bits
