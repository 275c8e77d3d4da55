// The stages from a specification to a filter, over lists of roots.
//
// A root is a complex number. A complex entry of a list stands for a conjugate pair and counts as two roots; a real entry,
// one whose imaginary part equals 0.0, counts as one. A root at infinity is the real entry plus infinity. Lists are walked
// by this count, and the sections of the filter take their roots in list order, so the order of entries decides bits.
//
//     _ButterworthDesign ...            roots in the s-plane, passband edge at 1 rad/s
//     _ConvertAnalogProtoToDigital      in the z-plane, passband edge at pi/2
//     _ConvertDigitalProtoToLP, HP      moved to the cut-off
//     _ConvertDigitalProtoToBP, BR      moved to the band, two roots for each
//     _MakeFilterFromRoots              sections
//
// Beside the lists goes `designGain`, the constant K of H = K prod(zeros) / prod(poles), a factor (x - root) for each root.
#pragma once

#include "filter/ORVAfilter_internal.h"

#include <complex>
#include <cstdint>

namespace orva
{

using Root = std::complex<double>;

// The prototype's passband edge on the unit circle, exp(j pi/2) as doubles give it.
inline constexpr Root prototypeEdge = {6.123233995736766e-17, 1.0};

inline bool isReal(Root root)
{
    return root.imag() == 0.0;
}

// The distance of a point from a root; from both members where the root is a pair.
inline double distance(Root point, Root root)
{
    const double d = std::abs(point - root);
    return isReal(root) ? d : d * std::abs(point - std::conj(root));
}

// A root outside the unit circle is replaced by its reciprocal. Poles outside are planned: two of the designs have them.
inline Root reflected(Root root)
{
    return std::abs(root) > 1.0 ? Root(1.0, 0.0) / root : root;
}

// The product of the distances of one list's roots from a reference point, before a stage and after it. A stage keeps the
// magnitude at its reference:
//     K' = ((P' Z) / (Z' P)) K,  P and Z the products of poles and zeros before it, P' and Z' after it
struct Distances {
    double before = 1.0;
    double after = 1.0;
};

inline void correctGain(const Distances &poles, const Distances &zeros, double *designGain)
{
    *designGain = ((poles.after * zeros.before) / (zeros.after * poles.before)) * *designGain;
}

// A specification as the prototypes take it: `wp` always 1.0 and never read; `ws` the stopband edge over the passband
// edge, -1.0 for none; attenuations in dB, `As` -1.0 for none.
using OrderEstimator = int32_t (*)(double wp, double ws, double Ap, double As);
using PrototypeDesign = int32_t (*)(double wp, double ws, double Ap, double As, int32_t order, Root *poles,
                                    Root *zeros, double *designGain);

struct Approximation {
    OrderEstimator order;   // -1 where the specification does not tell
    PrototypeDesign design; // 1, or 0 for a refusal, which writes nothing
};

extern const Approximation _Butterworth;
extern const Approximation _Chebyshev;
extern const Approximation _ChebyshevII;
extern const Approximation _Elliptic;

int32_t _ButterworthOrder(double wp, double ws, double Ap, double As);
int32_t _ChebyshevOrder(double wp, double ws, double Ap, double As);
int32_t _ChebyshevIIOrder(double wp, double ws, double Ap, double As);
int32_t _EllipticOrder(double wp, double ws, double Ap, double As);

int32_t _ButterworthDesign(double wp, double ws, double Ap, double As, int32_t order, Root *poles,
                           Root *zeros, double *designGain);
int32_t _ChebyshevDesign(double wp, double ws, double Ap, double As, int32_t order, Root *poles, Root *zeros,
                         double *designGain);
int32_t _ChebyshevIIDesign(double wp, double ws, double Ap, double As, int32_t order, Root *poles,
                           Root *zeros, double *designGain);
int32_t _EllipticDesign(double wp, double ws, double Ap, double As, int32_t order, Root *poles, Root *zeros,
                        double *designGain);

// (10^(As/10) - 1) / (10^(Ap/10) - 1)
double attenuationRatio(double Ap, double As);

// x cut toward zero; the most negative integer where x is not a number or beyond the range.
int32_t truncatedOrLowest(double x);

void _ConvertAnalogProtoToDigital(int32_t order, Root *poles, Root *zeros, double *designGain);
void _ConvertDigitalProtoToLP(int32_t order, float fpass1, Root *poles, Root *zeros, double *designGain);
void _ConvertDigitalProtoToHP(int32_t order, float fpass1, Root *poles, Root *zeros, double *designGain);

// Both lists hold room for 2 x `order` entries; those after the new roots come back as not-a-number. Always 1.
int32_t _ConvertDigitalProtoToBP(int32_t order, float fpass1, float fpass2, Root *poles, Root *zeros,
                                 double *designGain);
int32_t _ConvertDigitalProtoToBR(int32_t order, float fpass1, float fpass2, Root *poles, Root *zeros,
                                 double *designGain);

// `rootCount` roots in each list, pairs counted twice. Null, with a message, where they do not pair.
_ORVA_FILTER *_MakeFilterFromRoots(int32_t rootCount, const Root *poles, const Root *zeros, double designGain,
                                   float filterGain, int32_t numChannels, int32_t kind);

} // namespace orva
