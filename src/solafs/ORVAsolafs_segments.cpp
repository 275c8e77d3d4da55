// The speed history: one entry a stretch of input fed at one speed.
#include "solafs/ORVAsolafs_internal.h"

#include <algorithm>

using namespace orva;

namespace orva
{
namespace
{

// A channel that has taken nothing yet takes the speed at once, and opens an entry for it at every call.
SolafsSegment *openFirstSegment(ORVA_SOLAFS *solafs, float speed)
{
    solafs->speed = speed;
    if (solafs->segmentCount == static_cast<int32_t>(solafs->segments.size())) {
        SolafsSegment *last = &solafs->segments.back();
        last->speed = speed;
        return last;
    }
    SolafsSegment *segment = &solafs->segments[static_cast<size_t>(solafs->segmentCount)];
    *segment = {0, 0, 0, speed};
    ++solafs->segmentCount;
    ++solafs->nextSegment;
    return segment;
}

} // namespace

void recordSpeed(ORVA_SOLAFS *solafs, float speed, int32_t taken)
{
    const bool isFresh = solafs->bufferEnd == solafs->similarityLength;
    SolafsSegment *target = nullptr;
    if (isFresh) {
        target = openFirstSegment(solafs, speed);
    } else {
        target = &solafs->segments[static_cast<size_t>(solafs->segmentCount - 1)];
        if (speed != target->speed) { // not-a-number always differs
            if (solafs->segmentCount < static_cast<int32_t>(solafs->segments.size())) {
                const int32_t start = solafs->bufferEnd - solafs->similarityLength;
                target[1] = {start, start, target->outputEnd, speed};
                ++target;
                ++solafs->segmentCount;
                ++solafs->pendingSegments;
            } else {
                speed = target->speed; // the table is full: the last entry goes on
            }
        }
    }
    target->inputEnd += taken;
    // Truncated at every call, so many small calls lose more than a few large ones.
    target->outputEnd =
        truncatedInRange(static_cast<float>(target->outputEnd) + static_cast<float>(taken) / speed);
}

} // namespace orva

int64_t ORVA_SolafsTranslateCursorPosition(ORVA_SOLAFS *solafs, int64_t position)
{
    if (solafs == nullptr || solafs->nextSegment <= 0)
        return 0;
    const auto &segments = solafs->segments;
    const auto last = static_cast<size_t>(solafs->segmentCount - 1);
    size_t i = 0;
    while (i < last && segments[i].outputEnd < position)
        ++i;
    const int32_t previousEnd = i > 0 ? segments[i - 1].outputEnd : 0;
    // The outermost 2^31 positions are one float, so the limits change no result; they keep the difference in
    // range.
    constexpr int64_t margin = int64_t{1} << 31;
    const int64_t distance = std::clamp(position, std::numeric_limits<int64_t>::min() + margin,
                                        std::numeric_limits<int64_t>::max() - margin) -
                             previousEnd;
    return truncatedInRange(static_cast<float>(distance) * segments[i].speed +
                            static_cast<float>(segments[i].inputStart));
}
