// Filters from one line of text: the keys, their precedence, and the calling order of the stages.
#include "filter/ORVAfilter_spec.h"

#include "filter/ORVAfilter_design.h"
#include "filter/ORVAfilter_format.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <span>

#include <kett/KTdebug.h>
#include <kett/KTstring.h>

namespace
{

struct Request {
    float gain;
    int32_t numChannels;
    char type[64];
    char approximation[64];
    int32_t order;
    float Ap;
    float As;
    Edges edges;
    int32_t samplingRate;
};

template <class Value> struct Word {
    const char *text;
    Value value;
};

constexpr Word<int32_t> types[] = {
    {"lowpass", lowPass},     {"lp", lowPass},    {"highpass", highPass},     {"hp", highPass},
    {"bandpass", bandPass},   {"bp", bandPass},   {"bandreject", bandReject}, {"br", bandReject},
    {"bandstop", bandReject}, {"bs", bandReject},
};

// "ellilptic" stands so on purpose; "elliptic" is no word of this list.
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

float readFloat(const char *text, const char *key, float defaultValue)
{
    return KTSTRING_GetFloatValueFromString(text, key, defaultValue);
}

int32_t readCut(const char *text, const char *key, float defaultValue)
{
    return truncated(static_cast<double>(readFloat(text, key, defaultValue)));
}

Request readRequest(const char *text)
{
    Request request = {};
    request.gain = readFloat(text, "gain", 1.0f);
    request.numChannels = readCut(text, "num_channels", static_cast<float>(readCut(text, "nc", 1.0f)));
    KTSTRING_GetStringValueFromString(text, "type", "lowpass", request.type, sizeof request.type);
    KTSTRING_GetStringValueFromString(text, "approximation", "butterworth", request.approximation,
                                      sizeof request.approximation);
    request.order = KTSTRING_GetIntegerValueFromString(text, "order", -1);
    request.Ap = readFloat(text, "Ap", 3.0f);
    request.As = readFloat(text, "As", -1.0f);
    request.edges.fpass1 = readFloat(text, "fpass1", readFloat(text, "fpass", -1.0f));
    request.edges.fpass2 = readFloat(text, "fpass2", -1.0f);
    request.edges.fstop1 = readFloat(text, "fstop1", readFloat(text, "fstop", -1.0f));
    request.edges.fstop2 = readFloat(text, "fstop2", -1.0f);
    request.samplingRate = readCut(text, "fs", -1.0f);
    return request;
}

double *newDoubles(int64_t count)
{
    return newZeroed<double>(static_cast<size_t>(count));
}

_ORVA_FILTER *fromBiquads(const char *text, int32_t numChannels, int32_t rows)
{
    double *records = newDoubles(int64_t{rows} * biquadDoubles);
    if (records == nullptr)
        return nullptr;
    KTSTRING_GetDoubleMatrixValuesFromString(text, "biquads", records, rows, biquadDoubles);
    _ORVA_FILTER *filter = ORVA_CreateFilterFromBiquads(numChannels, static_cast<uint32_t>(rows), records);
    std::free(records);
    return filter;
}

_ORVA_FILTER *fromCoefs(const char *text, int32_t numChannels, int32_t numCount, int32_t denCount)
{
    double *numerator = newDoubles(numCount);
    double *denominator = newDoubles(denCount);
    _ORVA_FILTER *filter = nullptr;
    if (numerator != nullptr && denominator != nullptr) {
        KTSTRING_GetDoubleVectorValuesFromString(text, "denominator", denominator, denCount);
        KTSTRING_GetDoubleVectorValuesFromString(text, "numerator", numerator, numCount);
        filter = ORVA_CreateFilterFromCoefs(static_cast<uint32_t>(numChannels), numCount, numerator,
                                            static_cast<uint32_t>(denCount), denominator);
    }
    std::free(numerator);
    std::free(denominator);
    return filter;
}

// Design, transforms and sections over two lists of `listLength` roots each.
_ORVA_FILTER *designOver(const Request &request, int32_t kind, float ws, const Approximation &approximation,
                         Root *poles, Root *zeros)
{
    const Edges &edges = request.edges;
    int32_t order = request.order;
    double gain = 0.0;
    if (approximation.design(1.0, static_cast<double>(ws), static_cast<double>(request.Ap),
                             static_cast<double>(request.As), order, poles, zeros, &gain) != 1)
        return nullptr;
    _ConvertAnalogProtoToDigital(order, poles, zeros, &gain);
    switch (kind) {
    case lowPass:
        _ConvertDigitalProtoToLP(order, edges.fpass1, poles, zeros, &gain);
        break;
    case highPass:
        _ConvertDigitalProtoToHP(order, edges.fpass1, poles, zeros, &gain);
        break;
    case bandPass:
        if (_ConvertDigitalProtoToBP(order, edges.fpass1, edges.fpass2, poles, zeros, &gain) != 1)
            return nullptr;
        order *= 2;
        break;
    default:
        if (_ConvertDigitalProtoToBR(order, edges.fpass1, edges.fpass2, poles, zeros, &gain) != 1)
            return nullptr;
        order *= 2;
    }
    return _MakeFilterFromRoots(order, poles, zeros, gain, request.gain, request.numChannels, kind);
}

_ORVA_FILTER *designWithOrder(const Request &request, int32_t kind, float ws,
                              const Approximation &approximation)
{
    constexpr int32_t largestOrder = 1048576; // what the root lists may take of the heap
    if (request.order <= 0 || request.order > largestOrder)
        return nullptr;
    const bool isBand = kind == bandPass || kind == bandReject;
    const size_t listLength = static_cast<size_t>(request.order) * (isBand ? 2 : 1);
    const size_t bytes = 2 * listLength * sizeof(Root);
    auto *roots = static_cast<Root *>(std::malloc(bytes));
    if (roots == nullptr)
        return nullptr;
    // Not-a-number throughout: an entry that a design does not write counts as a root at infinity.
    std::memset(static_cast<void *>(roots), 0xff, bytes);
    _ORVA_FILTER *filter = designOver(request, kind, ws, approximation, roots, roots + listLength);
    std::free(roots);
    return filter;
}

_ORVA_FILTER *fromRequest(Request request)
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
    const int32_t estimate = (*approximation)
                                 ->order(1.0, static_cast<double>(ws), static_cast<double>(request.Ap),
                                         static_cast<double>(request.As));
    request.order = std::max(request.order, estimate); // the requested order is a minimum
    return designWithOrder(request, *kind, ws, **approximation);
}

_ORVA_FILTER *fromText(const char *text)
{
    const int32_t numChannels = readCut(text, "num_channels", static_cast<float>(readCut(text, "nc", 1.0f)));
    int32_t rows = 0;
    int32_t columns = 0;
    if (KTSTRING_GetMatrixSizeFromString(text, "biquads", &rows, &columns) != 0 && columns == biquadDoubles)
        return fromBiquads(text, numChannels, rows);
    int32_t numCount = 0;
    int32_t denCount = 0;
    if (KTSTRING_GetVectorSizeFromString(text, "numerator", &numCount) != 0 &&
        KTSTRING_GetVectorSizeFromString(text, "denominator", &denCount) != 0)
        return fromCoefs(text, numChannels, numCount, denCount);
    return fromRequest(readRequest(text));
}

} // namespace

_ORVA_FILTER *ORVA_CreateFilter(const char *format, ...)
{
    if (format == nullptr)
        return nullptr;
    va_list arguments;
    va_start(arguments, format);
    char *text = newFormattedText(format, arguments);
    va_end(arguments);
    if (text == nullptr)
        return nullptr;
    _ORVA_FILTER *filter = fromText(text);
    std::free(text);
    return filter;
}
