// The input call.
#include "solafs/ORVAsolafs_internal.h"

#include <algorithm>

using namespace orva;

namespace orva
{
namespace
{

// Shifts the buffer down until slot 0 holds the sample 2 * similarityLength before the analysis position:
// nothing older is looked at again.
void dropOldSamples(ORVA_SOLAFS *solafs)
{
    const int64_t drop = int64_t{analysisPosition(solafs)} - solafs->bufferBase - solafs->similarityLength;
    if (drop <= 0)
        return;
    const int64_t held = slotsHeld(solafs);
    if (drop < held)
        std::copy(solafs->buffer + drop, solafs->buffer + held, solafs->buffer);
    solafs->bufferBase += static_cast<int32_t>(drop);
}

// Takes `count` samples, `stride` apart, into slot `first` and on. Slots below 0 are gone: their samples only
// count.
void store(ORVA_SOLAFS *solafs, int64_t first, const float *data, int64_t stride, int64_t count)
{
    float *buffer = solafs->buffer;
    const int64_t skipped = std::max<int64_t>(-first, 0);
    if (stride == 1 && skipped < count) {
        std::copy(data + skipped, data + count, buffer + first + skipped);
        return;
    }
    for (int64_t i = skipped; i < count; ++i)
        buffer[first + i] = data[i * stride];
}

} // namespace
} // namespace orva

int32_t ORVA_SolafsInputData(ORVA_SOLAFS *solafs, int32_t offset, const float *data, int32_t count,
                             float speed)
{
    if (solafs == nullptr)
        return 0;
    dropOldSamples(solafs);

    const int64_t held = slotsHeld(solafs);
    const int64_t countable = std::numeric_limits<int32_t>::max() - solafs->bufferEnd;
    const int64_t room = std::clamp<int64_t>(solafs->bufferCapacity - held, 0, countable);
    const int64_t offered = data != nullptr ? std::max(count, 0) : 0;
    const int64_t taken = std::min(offered, room);

    if (taken > 0)
        store(solafs, held, data + offset, solafs->channelStride, taken);
    recordSpeed(solafs, speed, static_cast<int32_t>(taken));
    solafs->bufferEnd += static_cast<int32_t>(taken);
    return static_cast<int32_t>(taken);
}
