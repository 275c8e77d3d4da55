// Root lists to running sections. Nothing is sorted: section s takes the s-th unit of each list, a unit being one complex
// entry or two adjacent real ones.
#include "filter/ORVAfilter_design.h"

#include <kett/KTdebug.h>

#include <cmath>

namespace orva
{
namespace
{

// (1 - x z^-1)(1 - y z^-1) = 1 + first z^-1 + second z^-2, in the parts that the roots of a unit give.
struct Unit {
    Root x, y; // y real where x is
    bool isPair;
};

// Takes the next unit of a list. False where a real root is followed by a complex one.
bool takeUnit(const Root *&next, Unit &unit)
{
    unit = {next[0], next[0], !isReal(next[0])};
    if (unit.isPair) {
        next += 1;
        return true;
    }
    unit.y = next[1];
    next += 2;
    return isReal(unit.y);
}

double squaredModulus(Root z)
{
    return z.real() * z.real() + z.imag() * z.imag();
}

void writePoles(const Unit &unit, double *record)
{
    record[0] = unit.isPair ? unit.x.real() * -2.0 : (-unit.x.real()) - unit.y.real();
    record[1] = unit.isPair ? squaredModulus(unit.x) : unit.x.real() * unit.y.real();
}

void writeZeros(const Unit &unit, double g, double *record)
{
    record[2] = g;
    record[3] = unit.isPair ? (g * -2.0) * unit.x.real() : (unit.x.real() + unit.y.real()) * (-g);
    record[4] = unit.isPair ? squaredModulus(unit.x) * g : (unit.x.real() * g) * unit.y.real();
}

// Fills the records; null, or the message of the refusal.
const char *fillSections(int32_t rootCount, const Root *poles, const Root *zeros, double g, double *record)
{
    for (int32_t section = 0; section < rootCount >> 1; ++section) {
        Unit unit;
        if (!takeUnit(poles, unit))
            return "_MakeFilterFromRoots: Unpaired real poles";
        writePoles(unit, record);
        if (!takeUnit(zeros, unit))
            return "_MakeFilterFromRoots: Unpaired real zeros";
        writeZeros(unit, g, record);
        record += biquadDoubles;
    }
    if ((rootCount & 1) == 0)
        return nullptr;
    if (!isReal(*poles) || !isReal(*zeros))
        return "_MakeFilterFromRoots: Unpaired imaginary root";
    record[0] = -poles->real();
    record[1] = 0.0;
    record[2] = g;
    record[3] = (-g) * zeros->real();
    record[4] = 0.0;
    return nullptr;
}

} // namespace

_ORVA_FILTER *_MakeFilterFromRoots(int32_t rootCount, const Root *poles, const Root *zeros, double designGain,
                                   float filterGain, int32_t numChannels, int32_t kind)
{
    const int32_t numBiquads = (rootCount >> 1) + (rootCount & 1);
    _ORVA_FILTER *filter = newBiquadFilter(numChannels, numBiquads);
    if (filter == nullptr)
        return nullptr;
    filter->kind = kind;
    // g = K^(1 / sections): spread evenly, over a first-order section too. A negative K gives not-a-number where there are
    // two sections or more.
    const double g =
        std::pow(static_cast<double>(filterGain) * designGain, 1.0 / static_cast<double>(numBiquads));
    auto *state = static_cast<_DFIISOSstate *>(filter->state);
    if (const char *refusal = fillSections(rootCount, poles, zeros, g, state->coefs); refusal != nullptr) {
        KTDEBUG_Error(-1, "%s", refusal);
        ORVA_DestroyFilter(filter);
        return nullptr;
    }
    return filter;
}

} // namespace orva
