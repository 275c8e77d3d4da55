// The digital prototype moved to a band: each root becomes the two roots of a quadratic.
// Source: A. G. Constantinides, "Spectral transformations for digital filters", Proc. IEE 117 (1970).
#include "filter/ORVAfilter_design.h"

#include "common/numbers.h"

#include <algorithm>
#include <limits>

namespace orva
{
namespace
{

struct Band {
    double alpha;
    double tangent; // of half the band's width
    Root lowerEdge; // on the unit circle
};

// alpha = cos((w1 + w2) / 2) / cos((w2 - w1) / 2)
Band bandOf(float fpass1, float fpass2)
{
    const double f1 = static_cast<double>(fpass1);
    const double w1 = f1 * pi;
    const double w2 = static_cast<double>(fpass2) * pi;
    return {std::cos((w1 + w2) * 0.5) / std::cos((w2 - w1) * 0.5), std::tan((w2 - w1) * 0.5),
            std::exp(Root(f1 * 0.0 * pi, w1))};
}

// tan(pi / 4) as doubles give it, the tangent of half the prototype's cut-off. Not 1.0: the bits rest on it.
constexpr double prototypeTangent = 0.9999999999999999;

// The quadratic v z^2 + u z + m = 0 that a root p of the prototype becomes.
struct Quadratic {
    Root u, v, m;
};

struct BandPass {
    explicit BandPass(const Band &band)
    {
        const double K = prototypeTangent / band.tangent;
        c1 = -(((band.alpha + band.alpha) * K) / (K + 1.0));
        c2 = (K - 1.0) / (K + 1.0);
    }

    Quadratic operator()(Root p) const
    {
        return {c1 * (p + 1.0), 1.0 + c2 * p, p + c2};
    }

    double c1, c2;
};

struct BandReject {
    explicit BandReject(const Band &band)
    {
        const double K = prototypeTangent * band.tangent;
        c1 = (band.alpha + band.alpha) / (K + 1.0);
        c2 = (1.0 - K) / (K + 1.0);
    }

    Quadratic operator()(Root p) const
    {
        return {c1 * (1.0 - p), c2 * p - 1.0, p - c2};
    }

    double c1, c2;
};

// Rewrites one list in place. Its entries move to the upper half first and are read from there: two are written for one
// that has been read, so the writes never overtake the reads. What is left of them after the new roots is cleared to
// not-a-number, lest a later stage take it for roots.
template <class Substitution>
Distances moveList(int32_t order, const Substitution &substitute, Root lowerEdge, Root *list)
{
    Root *const end = std::copy_n(list, order, list + order);
    const Root *source = end - order;
    Distances distances;
    const auto store = [&](Root *place, Root root) {
        *place = reflected(root);
        distances.after = distance(lowerEdge, *place) * distances.after;
    };
    for (int32_t count = 0; count < order; ++source) {
        const Root p = *source;
        distances.before = distance(prototypeEdge, p) * distances.before;
        const auto [u, v, m] = substitute(p);
        const Root D = u * u - (4.0 * v) * m;
        const Root den = 2.0 * v;
        if (isReal(p) && D.real() < 0.0) {
            // The two roots are a pair, and one entry stands for both.
            const Root r = std::sqrt(-D);
            store(list++, (Root(0.0, 1.0) * r - u) / den);
        } else {
            const Root r = std::sqrt(D);
            store(list++, (r - u) / den);
            store(list++, (-u - r) / den);
        }
        count += isReal(p) ? 1 : 2;
    }
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    std::fill(list, end, Root(none, none));
    return distances;
}

template <class Substitution>
int32_t moveToBand(int32_t order, float fpass1, float fpass2, Root *poles, Root *zeros, double *designGain)
{
    if (order <= 0)
        return 1;
    const Band band = bandOf(fpass1, fpass2);
    const Substitution substitute(band);
    const Distances ofPoles = moveList(order, substitute, band.lowerEdge, poles);
    const Distances ofZeros = moveList(order, substitute, band.lowerEdge, zeros);
    correctGain(ofPoles, ofZeros, designGain);
    return 1;
}

} // namespace

int32_t _ConvertDigitalProtoToBP(int32_t order, float fpass1, float fpass2, Root *poles, Root *zeros,
                                 double *designGain)
{
    return moveToBand<BandPass>(order, fpass1, fpass2, poles, zeros, designGain);
}

int32_t _ConvertDigitalProtoToBR(int32_t order, float fpass1, float fpass2, Root *poles, Root *zeros,
                                 double *designGain)
{
    return moveToBand<BandReject>(order, fpass1, fpass2, poles, zeros, designGain);
}

} // namespace orva
