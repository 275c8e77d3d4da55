// The output call: whole hops, each a cross-fade from what followed the last match into the next one.
#include "solafs/ORVAsolafs_internal.h"

#include "solafs/kernels/ORVAsolafs_kernels.h"

#include <algorithm>

using namespace orva;

namespace orva
{
namespace
{

// Brings the next recorded speed into force once the analysis has reached its input. The bias makes up for
// the jump of the analysis position, up to truncation.
void changeSpeed(ORVA_SOLAFS *solafs, int32_t analysis)
{
    if (solafs->pendingSegments <= 0)
        return;
    const SolafsSegment &next = solafs->segments[static_cast<size_t>(solafs->nextSegment)];
    if (next.speed == solafs->speed || next.inputStart > analysis)
        return;
    const float before = static_cast<float>(solafs->outputPosition) * solafs->speed;
    const float after = static_cast<float>(solafs->outputPosition) * next.speed;
    ++solafs->nextSegment;
    --solafs->pendingSegments;
    solafs->speed = next.speed;
    solafs->positionBias = truncatedInRange((before - after) + static_cast<float>(solafs->positionBias));
}

// Keeps the skew, moved along with the two timelines, as long as it stays in its range; else searches.
void updateSkew(ORVA_SOLAFS *solafs, int32_t analysis)
{
    const int64_t predicted = int64_t{solafs->skew} + (int64_t{analysis} - solafs->lastAnalysisA) -
                              (int64_t{solafs->outputPosition} - solafs->lastAnalysisB);
    // B holds the analysis position too, not the output position. This is deliberate: the prediction thus takes in the
    // whole distance between the timelines at every hop, and any speed but 1.0 ends in a search at every hop.
    solafs->lastAnalysisA = analysis;
    solafs->lastAnalysisB = analysis;
    if (predicted >= 0 && predicted <= solafs->maxSkew) {
        solafs->skew = static_cast<int32_t>(predicted);
    } else {
        findSkew(solafs, analysis);
    }
}

// `count` samples from stream position `first` on.
void readStretch(const ORVA_SOLAFS *solafs, int64_t first, float *out, int32_t count)
{
    const int64_t held = slotsHeld(solafs);
    const int64_t begin = slotOf(solafs, first);
    const int64_t silentFirst = std::clamp<int64_t>(-begin, 0, count);
    const int64_t end = std::clamp<int64_t>(held - begin, silentFirst, count);
    std::fill(out, out + silentFirst, 0.0f);
    if (silentFirst < end)
        std::copy(solafs->buffer + begin + silentFirst, solafs->buffer + begin + end, out + silentFirst);
    std::fill(out + end, out + count, 0.0f);
}

// The same where they lie, or in `room` if some of them are not held.
const float *stretchAt(const ORVA_SOLAFS *solafs, int64_t first, float *room, int32_t count)
{
    const int64_t begin = slotOf(solafs, first);
    if (begin >= 0 && begin + count <= slotsHeld(solafs))
        return solafs->buffer + begin;
    readStretch(solafs, first, room, count);
    return room;
}

// Fades from the continuation in `overlap` into the stretch that ends at the match, and gives the hop to the caller.
void fadeIn(ORVA_SOLAFS *solafs, float *data, int64_t offset)
{
    const int32_t length = solafs->overlapLength;
    constexpr int32_t tile = 1024;
    std::array<float, tile> room;
    for (int32_t start = 0; start < length; start += tile) {
        const int32_t count = std::min(tile, length - start);
        const int64_t first = int64_t{solafs->matchPosition} - length + start;
        const float *next = stretchAt(solafs, first, room.data(), count);
        kernels<SolafsKernels>().crossFade(solafs->fadeRamp + start, next, solafs->overlap + start, count);
    }
    const float *overlap = solafs->overlap;
    const int64_t stride = solafs->channelStride;
    if (stride == 1) {
        std::copy(overlap, overlap + length, data + offset);
        return;
    }
    for (int32_t i = 0; i < length; ++i)
        data[offset + i * stride] = overlap[i];
}

} // namespace
} // namespace orva

int32_t ORVA_SolafsOutputData(ORVA_SOLAFS *solafs, int32_t offset, float *data, int32_t capacity)
{
    if (solafs == nullptr || data == nullptr)
        return 0;
    const int32_t length = solafs->overlapLength;
    const int64_t reach = 2 * int64_t{solafs->maxSkew};
    const int32_t lastPosition = std::numeric_limits<int32_t>::max() - solafs->hop;
    int32_t analysis = analysisPosition(solafs);
    int64_t written = 0;
    do {
        if (solafs->bufferEnd - reach <= analysis || solafs->outputPosition > lastPosition)
            break;
        readStretch(solafs, solafs->matchPosition, solafs->overlap, length);
        solafs->outputPosition += solafs->hop;
        changeSpeed(solafs, analysis);
        analysis = analysisPosition(solafs);
        updateSkew(solafs, analysis);
        solafs->matchPosition = static_cast<int32_t>(int64_t{analysis} + solafs->skew);
        fadeIn(solafs, data, offset + written * solafs->channelStride);
        written += length;
    } while (length <= capacity - written);
    return static_cast<int32_t>(written);
}
