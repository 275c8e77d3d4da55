// From a request to a filter: its words, its order, and the calling order of the stages.
#include "filter/ORVAfilter_design.h"

#include "common/memory.h"
#include "filter/ORVAfilter_request.h"

#include <kett/KTdebug.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <span>

namespace orva
{
namespace
{

template <class Value> struct Word {
    const char *text;
    Value value;
};

constexpr Word<int32_t> types[] = {
    {"lowpass", lowPass},     {"lp", lowPass},    {"highpass", highPass},     {"hp", highPass},
    {"bandpass", bandPass},   {"bp", bandPass},   {"bandreject", bandReject}, {"br", bandReject},
    {"bandstop", bandReject}, {"bs", bandReject},
};

// "ellilptic" is deliberate; "elliptic" is no word of this list.
constexpr Word<const Approximation *> approximations[] = {
    {"butterworth", &_Butterworth}, {"butter", &_Butterworth},   {"bt", &_Butterworth},
    {"chebyshev", &_Chebyshev},     {"chebyshev1", &_Chebyshev}, {"cheby", &_Chebyshev},
    {"cheby1", &_Chebyshev},        {"cb", &_Chebyshev},         {"invchebyshev", &_ChebyshevII},
    {"chebyshev2", &_ChebyshevII},  {"invcheby", &_ChebyshevII}, {"cheby2", &_ChebyshevII},
    {"ci", &_ChebyshevII},          {"ellilptic", &_Elliptic},   {"ellip", &_Elliptic},
    {"cauer", &_Elliptic},          {"ca", &_Elliptic},
};

template <class Value> const Value *find(std::span<const Word<Value>> words, const char *text)
{
    const auto word = std::find_if(words.begin(), words.end(),
                                   [=](const auto &w) { return std::strcmp(w.text, text) == 0; });
    return word != words.end() ? &word->value : nullptr;
}

// What a prototype is designed from. Whoever takes `ws`, `Ap` and `As` takes them as doubles.
struct Specification {
    double ws;
    double Ap;
    double As;
};

// A filter on its way through the stages.
struct Design {
    int32_t rootCount; // of each list, pairs counted twice
    Root *poles;
    Root *zeros;
    double designGain;
};

void moveToCutoff(int32_t kind, float fpass1, Design &d)
{
    const auto move = kind == lowPass ? _ConvertDigitalProtoToLP : _ConvertDigitalProtoToHP;
    move(d.rootCount, fpass1, d.poles, d.zeros, &d.designGain);
}

// Each root becomes two.
bool moveToBand(int32_t kind, const Edges &edges, Design &d)
{
    const auto move = kind == bandPass ? _ConvertDigitalProtoToBP : _ConvertDigitalProtoToBR;
    if (move(d.rootCount, edges.fpass1, edges.fpass2, d.poles, d.zeros, &d.designGain) != 1)
        return false;
    d.rootCount *= 2;
    return true;
}

bool isBand(int32_t kind)
{
    return kind == bandPass || kind == bandReject;
}

_ORVA_FILTER *runStages(const Request &request, int32_t kind, const Specification &specification,
                        const Approximation &approximation)
{
    constexpr int32_t largestOrder = 1048576; // what the root lists may take of the heap
    if (request.order <= 0 || request.order > largestOrder)
        return nullptr;
    const size_t listLength = static_cast<size_t>(request.order) * (isBand(kind) ? 2 : 1);
    const size_t bytes = 2 * listLength * sizeof(Root);
    const Owned<Root> roots(static_cast<Root *>(std::malloc(bytes)));
    if (roots == nullptr)
        return nullptr;
    // Not-a-number throughout: an entry that a design does not write counts as a root at infinity.
    std::memset(static_cast<void *>(roots.get()), 0xff, bytes);

    Design d = {request.order, roots.get(), roots.get() + listLength, 0.0};
    if (approximation.design(1.0, specification.ws, specification.Ap, specification.As, d.rootCount, d.poles,
                             d.zeros, &d.designGain) != 1)
        return nullptr;
    _ConvertAnalogProtoToDigital(d.rootCount, d.poles, d.zeros, &d.designGain);
    if (!isBand(kind))
        moveToCutoff(kind, request.edges.fpass1, d);
    else if (!moveToBand(kind, request.edges, d))
        return nullptr;
    return _MakeFilterFromRoots(d.rootCount, d.poles, d.zeros, d.designGain, request.filterGain,
                                request.numChannels, kind);
}

} // namespace

_ORVA_FILTER *designFilter(Request request)
{
    if (!normaliseEdges(request.edges, request.samplingRate))
        return nullptr;
    if (!(request.As > 0.0f) && request.order <= 0) {
        KTDEBUG_Error(-1, "ORVA_CreateFilter: you must specify As or order");
        return nullptr;
    }
    const int32_t *kind = find<int32_t>(types, request.type);
    if (kind == nullptr) {
        KTDEBUG_Error(-1, "ORVA_CreateFilter: Invalid filter type: %s\n", request.type);
        return nullptr;
    }
    float ws = noStopband;
    if (!measureSelectivity(*kind, request.edges, ws))
        return nullptr;
    const auto *approximation = find<const Approximation *>(approximations, request.approximation);
    if (approximation == nullptr) {
        KTDEBUG_Error(-1, "ORVA_CreateFilter: Invalid approximation (%s)", request.approximation);
        return nullptr;
    }
    const Specification specification = {static_cast<double>(ws), static_cast<double>(request.Ap),
                                         static_cast<double>(request.As)};
    const int32_t estimate =
        (*approximation)->order(1.0, specification.ws, specification.Ap, specification.As);
    request.order = std::max(request.order, estimate); // the requested order is a minimum
    return runStages(request, *kind, specification, **approximation);
}

} // namespace orva
