// The output call: whole hops, each a cross-fade from what followed the last match into the next one.
#include "solafs/ORVAsolafs_internal.h"

#include <algorithm>

// Brings the next recorded speed into force once the analysis has reached its input. The bias makes up for
// the jump of the analysis position, up to truncation.
static void _ChangeSpeed(ORVA_SOLAFS *solafs, int32_t analysis)
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
    solafs->positionBias = _Truncate((before - after) + static_cast<float>(solafs->positionBias));
}

// Keeps the skew, moved along with the two timelines, as long as it stays in its range; else searches.
static void _UpdateSkew(ORVA_SOLAFS *solafs, int32_t analysis)
{
    const int64_t predicted = int64_t{solafs->skew} + (int64_t{analysis} - solafs->lastAnalysisA) -
                              (int64_t{solafs->outputPosition} - solafs->lastAnalysisB);
    // Meant: B holds the analysis position too, not the output position. The prediction thus takes in the
    // whole distance between the timelines at every hop, and any speed but 1.0 ends in a search at every hop.
    solafs->lastAnalysisA = analysis;
    solafs->lastAnalysisB = analysis;
    if (predicted >= 0 && predicted <= solafs->maxSkew) {
        solafs->skew = static_cast<int32_t>(predicted);
    } else {
        _FindSkew(solafs, analysis);
    }
}

// v[i] = (1 - w[i]) p[i] + w[i] x[i], from the continuation p into the stretch x that ends at the match. The
// product w x is rounded to float, the rest is double; v[i] goes to p[i] and to the caller.
static void _CrossFade(ORVA_SOLAFS *solafs, float *data, int64_t offset)
{
    constexpr int32_t tile = 64;
    std::array<float, tile> x;
    const float *ramp = solafs->fadeRamp;
    float *overlap = solafs->overlap;
    const int64_t stride = solafs->channelStride;
    const int32_t length = solafs->overlapLength;
    for (int32_t start = 0; start < length; start += tile) {
        const int32_t count = std::min(tile, length - start);
        _ReadStretch(solafs, int64_t{solafs->matchPosition} - length + start, 1, x.data(), count);
        for (int32_t i = 0; i < count; ++i) {
            const float w = ramp[start + i];
            const float rising = w * x[static_cast<size_t>(i)];
            overlap[start + i] =
                static_cast<float>((1.0 - static_cast<double>(w)) * static_cast<double>(overlap[start + i]) +
                                   static_cast<double>(rising));
        }
    }
    for (int32_t i = 0; i < length; ++i)
        data[offset + i * stride] = overlap[i];
}

int32_t ORVA_SolafsOutputData(ORVA_SOLAFS *solafs, int32_t offset, float *data, int32_t capacity)
{
    if (solafs == nullptr || data == nullptr)
        return 0;
    const int32_t length = solafs->overlapLength;
    const int64_t reach = 2 * int64_t{solafs->maxSkew};
    const int32_t lastPosition = std::numeric_limits<int32_t>::max() - solafs->hop;
    int32_t analysis = _AnalysisPosition(solafs);
    int64_t written = 0;
    do {
        if (solafs->bufferEnd - reach <= analysis || solafs->outputPosition > lastPosition)
            break;
        _ReadStretch(solafs, solafs->matchPosition, 1, solafs->overlap, length);
        solafs->outputPosition += solafs->hop;
        _ChangeSpeed(solafs, analysis);
        analysis = _AnalysisPosition(solafs);
        _UpdateSkew(solafs, analysis);
        solafs->matchPosition = static_cast<int32_t>(int64_t{analysis} + solafs->skew);
        _CrossFade(solafs, data, offset + written * solafs->channelStride);
        written += length;
    } while (length <= capacity - written);
    return static_cast<int32_t>(written);
}
