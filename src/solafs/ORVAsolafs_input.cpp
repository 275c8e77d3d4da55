// The input call.
#include "solafs/ORVAsolafs_internal.h"

#include <algorithm>

// Shifts the buffer down until slot 0 holds the sample 2 * similarityLength behind the analysis position:
// nothing older is looked at again.
static void _DropOldSamples(ORVA_SOLAFS *solafs)
{
    const int64_t drop = int64_t{_AnalysisPosition(solafs)} - solafs->bufferBase - solafs->similarityLength;
    if (drop <= 0)
        return;
    const int64_t held = int64_t{solafs->bufferEnd} - solafs->bufferBase;
    if (drop < held)
        std::copy(solafs->buffer + drop, solafs->buffer + held, solafs->buffer);
    solafs->bufferBase += static_cast<int32_t>(drop);
}

int32_t ORVA_SolafsInputData(ORVA_SOLAFS *solafs, int32_t offset, const float *data, int32_t count,
                             float speed)
{
    if (solafs == nullptr)
        return 0;
    _DropOldSamples(solafs);

    // Below 0 where the analysis has run past the end of the input: those slots are gone, and samples for
    // them only count.
    const int64_t held = int64_t{solafs->bufferEnd} - solafs->bufferBase;
    const int64_t countable = std::numeric_limits<int32_t>::max() - solafs->bufferEnd;
    const int64_t room = std::clamp<int64_t>(solafs->bufferCapacity - held, 0, countable);
    const int64_t offered = data != nullptr ? std::max(count, 0) : 0;
    const int64_t taken = std::min(offered, room);

    const int64_t stride = solafs->channelStride;
    for (int64_t i = std::max<int64_t>(-held, 0); i < taken; ++i)
        solafs->buffer[held + i] = data[offset + i * stride];

    _RecordSpeed(solafs, speed, static_cast<int32_t>(taken));
    solafs->bufferEnd += static_cast<int32_t>(taken);
    return static_cast<int32_t>(taken);
}
