// From the s-plane to the digital prototype, and from there to the cut-off of a low-pass or high-pass.
// Source: A. G. Constantinides, "Spectral transformations for digital filters", Proc. IEE 117 (1970).
#include "filter/ORVAfilter_design.h"

#include <limits>

// One list through the bilinear transform z = (1 + r) / (1 - r). Distances are those from s = 0 and from z = 1.
static Distances bilinear(int32_t order, Root *list)
{
    Distances distances;
    for (int32_t count = 0; count < order; ++list) {
        const Root r = *list;
        const double modulus = std::abs(r);
        if (!(modulus <=
              std::numeric_limits<double>::max())) { // infinite, or an entry that no design has written
            *list = {-1.0, 0.0};
            distances.behind *= 2.0;
            ++count;
            continue;
        }
        distances.before = isReal(r) ? distances.before * modulus : modulus * (distances.before * modulus);
        const Root z = (1.0 + r) / (1.0 - r);
        *list = z;
        distances.behind *= distance(1.0, z);
        count += isReal(z) ? 1 : 2;
    }
    return distances;
}

void _ConvertAnalogProtoToDigital(int32_t order, Root *poles, Root *zeros, double *designGain)
{
    const Distances ofPoles = bilinear(order, poles);
    const Distances ofZeros = bilinear(order, zeros);
    correctGain(ofPoles, ofZeros, designGain);
}

// One list through t = sign (r + alpha) / (1 + alpha r). The reflection is part of the design: the high-pass rests on it.
static Distances moveList(int32_t order, double sign, double alpha, Root cutoff, Root *list)
{
    Distances distances;
    for (int32_t count = 0; count < order; ++list) {
        const Root r = *list;
        distances.before *= distance(prototypeEdge, r);
        const Root numerator = {sign * (r.real() + alpha), sign * r.imag()};
        const Root denominator = {1.0 + alpha * r.real(), alpha * r.imag()};
        const Root t = reflected(numerator / denominator);
        *list = t;
        distances.behind *= distance(cutoff, t);
        count += isReal(t) ? 1 : 2;
    }
    return distances;
}

static void moveToCutoff(int32_t order, double sign, double alpha, float fpass1, Root *poles, Root *zeros,
                         double *designGain)
{
    const double f = static_cast<double>(fpass1);
    const Root cutoff = std::exp(Root(f * 0.0 * pi, f * pi));
    const Distances ofPoles = moveList(order, sign, alpha, cutoff, poles);
    const Distances ofZeros = moveList(order, sign, alpha, cutoff, zeros);
    correctGain(ofPoles, ofZeros, designGain);
}

void _ConvertDigitalProtoToLP(int32_t order, float fpass1, Root *poles, Root *zeros, double *designGain)
{
    const double w = static_cast<double>(fpass1) * pi;
    const double alpha = std::sin((pi / 2.0 - w) * 0.5) / std::sin((pi / 2.0 + w) * 0.5);
    moveToCutoff(order, 1.0, alpha, fpass1, poles, zeros, designGain);
}

void _ConvertDigitalProtoToHP(int32_t order, float fpass1, Root *poles, Root *zeros, double *designGain)
{
    const double w = static_cast<double>(fpass1) * pi;
    const double alpha = -std::cos((pi / 2.0 - w) * 0.5) / std::cos((pi / 2.0 + w) * 0.5);
    moveToCutoff(order, -1.0, alpha, fpass1, poles, zeros, designGain);
}
