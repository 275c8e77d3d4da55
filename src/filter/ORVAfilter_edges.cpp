// The band edges of a request: their scale, their order, and the selectivity that they give.
#include "filter/ORVAfilter_request.h"

#include <kett/KTdebug.h>

#include <initializer_list>

namespace orva
{
namespace
{

// 2 f / F, where an edge is given
void normalise(float &edge, int32_t samplingRate)
{
    if (edge >= 0.0f)
        edge = static_cast<float>((2.0 * static_cast<double>(edge)) / static_cast<double>(samplingRate));
}

bool measureCutoff(int32_t kind, float p1, float s1, float &ws)
{
    if (p1 < 0.0f) {
        KTDEBUG_Error(-1, "ORVA_CreateFilter: You must specify a cutoff frequency (fpass)");
        return false;
    }
    if (p1 == 0.0f)
        return false;
    ws = noStopband;
    if (!(s1 > 0.0f))
        return true;
    if (kind == lowPass ? p1 >= s1 : s1 >= p1)
        return false;
    ws = kind == lowPass ? s1 / p1 : p1 / s1;
    return true;
}

// A band-pass has its stop edges outside the passband edges, a band-reject inside.
bool areInOrder(int32_t kind, const Edges &edges)
{
    const auto [p1, p2, s1, s2] = edges;
    const bool isPass = kind == bandPass;
    if (s1 > 0.0f && (isPass ? s1 >= p1 : p1 >= s1))
        return false;
    if (s2 > 0.0f && (isPass ? p2 >= s2 : s2 >= p2))
        return false;
    return !(s1 > 0.0f && s2 > 0.0f && s1 >= s2);
}

// The width between the stop edge that lies nearer to its passband and its mirror about the centre of the band, against the
// width of the band. The groupings decide bits.
float bandSelectivity(int32_t kind, const Edges &edges)
{
    const auto [p1, p2, s1, s2] = edges;
    const bool hasFirst = s1 > 0.0f;
    const bool hasSecond = s2 > 0.0f;
    if (!hasFirst && !hasSecond)
        return noStopband;
    if (kind == bandPass) {
        const bool takesFirst = hasFirst && (!hasSecond || (s2 - p2) > (p1 - s1));
        const float width = takesFirst ? ((p1 + p2) - s1) - s1 : s2 - ((p1 - s2) + p2);
        return width / (p2 - p1);
    }
    const bool takesFirst = hasFirst && (!hasSecond || (p2 - s2) > (s1 - p1));
    const float width = takesFirst ? ((p2 - s1) + p1) - s1 : s2 - ((p1 + p2) - s2);
    return (p2 - p1) / width;
}

bool measureBand(int32_t kind, const Edges &edges, float &ws)
{
    const auto [p1, p2, s1, s2] = edges;
    if (p1 < 0.0f || p2 < 0.0f) {
        KTDEBUG_Error(-1, "ORVA_CreateFilter: You must specify two cutoff frequences (fpass1 and fpass2)");
        return false;
    }
    if (p1 == 0.0f || p2 == 0.0f || p1 >= p2 || !areInOrder(kind, edges))
        return false;
    ws = bandSelectivity(kind, edges);
    return true;
}

} // namespace

bool normaliseEdges(Edges &edges, int32_t samplingRate)
{
    if (samplingRate <= 0 && (edges.fpass1 >= 1.0f || edges.fpass2 >= 1.0f)) {
        KTDEBUG_Error(
            -1, "ORVA_CreateFilter: If you want to specify frequencies in Hz, you must specify a sampling "
                "frequency.");
        return false;
    }
    if (samplingRate < 0)
        return true;
    for (float *edge : {&edges.fpass1, &edges.fpass2, &edges.fstop1, &edges.fstop2})
        normalise(*edge, samplingRate);
    return true;
}

bool measureSelectivity(int32_t kind, const Edges &edges, float &ws)
{
    if (kind == lowPass || kind == highPass)
        return measureCutoff(kind, edges.fpass1, edges.fstop1, ws);
    return measureBand(kind, edges, ws);
}

} // namespace orva
