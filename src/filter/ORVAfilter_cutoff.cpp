// From the s-plane to the digital prototype, and from there to the cut-off of a low-pass or high-pass.
// Source: A. G. Constantinides, "Spectral transformations for digital filters", Proc. IEE 117 (1970).
#include "filter/ORVAfilter_design.h"

#include "common/numbers.h"

#include <limits>

namespace orva
{
namespace
{

// One list through the bilinear transform z = (1 + r) / (1 - r). Distances are those from s = 0 and from z = 1, which keeps
// the gain at zero frequency.
Distances bilinear(int32_t order, Root *list)
{
    constexpr double largest = std::numeric_limits<double>::max();
    Distances distances;
    for (int32_t count = 0; count < order; ++list) {
        const Root r = *list;
        const double modulus = std::abs(r);
        if (!(modulus <= largest)) { // infinite, or an entry that no design has written
            *list = {-1.0, 0.0};
            distances.after *= 2.0;
            ++count;
            continue;
        }
        distances.before = isReal(r) ? distances.before * modulus : modulus * (distances.before * modulus);
        const Root z = (1.0 + r) / (1.0 - r);
        *list = z;
        distances.after *= distance(1.0, z);
        count += isReal(z) ? 1 : 2;
    }
    return distances;
}

// The transform t = sign (r + alpha) / (1 + alpha r), which brings the prototype's edge to `cutoff` on the unit circle.
struct Move {
    double sign;
    double alpha;
    Root cutoff;
};

// The reflection is part of the design: the high-pass rests on it.
Distances moveList(int32_t order, const Move &move, Root *list)
{
    Distances distances;
    for (int32_t count = 0; count < order; ++list) {
        const Root r = *list;
        distances.before *= distance(prototypeEdge, r);
        const Root numerator = {move.sign * (r.real() + move.alpha), move.sign * r.imag()};
        const Root denominator = {1.0 + move.alpha * r.real(), move.alpha * r.imag()};
        const Root t = reflected(numerator / denominator);
        *list = t;
        distances.after *= distance(move.cutoff, t);
        count += isReal(t) ? 1 : 2;
    }
    return distances;
}

void moveLists(int32_t order, const Move &move, Root *poles, Root *zeros, double *designGain)
{
    const Distances ofPoles = moveList(order, move, poles);
    const Distances ofZeros = moveList(order, move, zeros);
    correctGain(ofPoles, ofZeros, designGain);
}

// exp(j pi f)
Root onUnitCircle(float f)
{
    const double wide = static_cast<double>(f);
    return std::exp(Root(wide * 0.0 * pi, wide * pi));
}

} // namespace

void _ConvertAnalogProtoToDigital(int32_t order, Root *poles, Root *zeros, double *designGain)
{
    const Distances ofPoles = bilinear(order, poles);
    const Distances ofZeros = bilinear(order, zeros);
    correctGain(ofPoles, ofZeros, designGain);
}

// alpha = sin((pi/2 - w) / 2) / sin((pi/2 + w) / 2)
void _ConvertDigitalProtoToLP(int32_t order, float fpass1, Root *poles, Root *zeros, double *designGain)
{
    const double w = static_cast<double>(fpass1) * pi;
    const double alpha = std::sin((pi / 2.0 - w) * 0.5) / std::sin((pi / 2.0 + w) * 0.5);
    moveLists(order, {1.0, alpha, onUnitCircle(fpass1)}, poles, zeros, designGain);
}

// alpha = -cos((pi/2 - w) / 2) / cos((pi/2 + w) / 2)
void _ConvertDigitalProtoToHP(int32_t order, float fpass1, Root *poles, Root *zeros, double *designGain)
{
    const double w = static_cast<double>(fpass1) * pi;
    const double alpha = -std::cos((pi / 2.0 - w) * 0.5) / std::cos((pi / 2.0 + w) * 0.5);
    moveLists(order, {-1.0, alpha, onUnitCircle(fpass1)}, poles, zeros, designGain);
}

} // namespace orva
