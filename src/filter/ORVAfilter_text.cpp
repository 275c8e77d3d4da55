// Filters from one line of text: the keys, and which of them go before others.
#include <orva/ORVAfilter.h>

#include "common/memory.h"
#include "filter/ORVAfilter_design.h"
#include "filter/ORVAfilter_format.h"
#include "filter/ORVAfilter_request.h"

#include <kett/KTstring.h>

using namespace orva;

namespace orva
{
namespace
{

float readFloat(const char *text, const char *key, float defaultValue)
{
    return KTSTRING_GetFloatValueFromString(text, key, defaultValue);
}

int32_t readCut(const char *text, const char *key, float defaultValue)
{
    return truncatedOrLowest(static_cast<double>(readFloat(text, key, defaultValue)));
}

Request readRequest(const char *text, int32_t numChannels)
{
    Request request = {};
    request.filterGain = readFloat(text, "gain", 1.0f);
    request.numChannels = numChannels;
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

_ORVA_FILTER *fromBiquads(const char *text, int32_t numChannels, int32_t rows)
{
    const auto records = ownZeroed<double>(static_cast<size_t>(rows) * biquadDoubles);
    if (records == nullptr)
        return nullptr;
    KTSTRING_GetDoubleMatrixValuesFromString(text, "biquads", records.get(), rows, biquadDoubles);
    return ORVA_CreateFilterFromBiquads(numChannels, static_cast<uint32_t>(rows), records.get());
}

_ORVA_FILTER *fromCoefs(const char *text, int32_t numChannels, int32_t numCount, int32_t denCount)
{
    const auto numerator = ownZeroed<double>(static_cast<size_t>(numCount));
    const auto denominator = ownZeroed<double>(static_cast<size_t>(denCount));
    if (numerator == nullptr || denominator == nullptr)
        return nullptr;
    KTSTRING_GetDoubleVectorValuesFromString(text, "denominator", denominator.get(), denCount);
    KTSTRING_GetDoubleVectorValuesFromString(text, "numerator", numerator.get(), numCount);
    return ORVA_CreateFilterFromCoefs(static_cast<uint32_t>(numChannels), numCount, numerator.get(),
                                      static_cast<uint32_t>(denCount), denominator.get());
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
    return designFilter(readRequest(text, numChannels));
}

} // namespace
} // namespace orva

_ORVA_FILTER *ORVA_CreateFilter(const char *format, ...)
{
    if (format == nullptr)
        return nullptr;
    va_list arguments;
    va_start(arguments, format);
    const Owned<char> text(newFormattedText(format, arguments));
    va_end(arguments);
    return text != nullptr ? fromText(text.get()) : nullptr;
}
