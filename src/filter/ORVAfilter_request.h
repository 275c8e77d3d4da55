// A design request as its text gives it, and what is made of it.
#pragma once

#include <orva/ORVAfilter.h>

#include <cstdint>

namespace orva
{

// The kinds of response, as a finished filter holds them.
enum Kind : int32_t { lowPass = 0, highPass = 1, bandPass = 2, bandReject = 3 };

// Band edges: in the unit of the text, then as parts of half the sampling rate. Below zero: not given.
struct Edges {
    float fpass1;
    float fpass2;
    float fstop1;
    float fstop2;
};

struct Request {
    float filterGain; // the factor that the host asks for
    int32_t numChannels;
    char type[64];
    char approximation[64];
    int32_t order; // the least one
    float Ap;      // attenuation at the passband edges, in dB
    float As;      // of the stopband; not above zero: not given
    Edges edges;
    int32_t samplingRate; // in Hz; below zero: edges are normalised already
};

// The selectivity of a request without a stopband edge.
inline constexpr float noStopband = -1.0f;

// Brings edges to the normalised scale. False, with a message, for passband edges that can only be in hertz where there is
// no sampling rate.
bool normaliseEdges(Edges &edges, int32_t samplingRate);

// Checks the edges of a kind and measures the selectivity, stopband edge over passband edge. False, in part with a message,
// where an edge is missing or the edges are out of order.
bool measureSelectivity(int32_t kind, const Edges &edges, float &ws);

// The filter of a request; null, in part with a message, where it cannot be designed.
_ORVA_FILTER *designFilter(Request request);

} // namespace orva
