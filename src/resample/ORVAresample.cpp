// The handle: configuration, dispatch, and the report of a handle that is null or damaged.
#include <orva/ORVAresample.h>

#include "common/memory.h"
#include "resample/ORVAresample_handle.h"
#include "resample/ORVAresample_hold.h"
#include "resample/ORVAresample_polyphase.h"
#include "resample/ORVAresample_work.h"

#include <kett/KTdebug.h>
#include <kett/KTsettings.h>
#include <kett/KTstring.h>

#include <array>
#include <cstring>

using namespace orva;

namespace orva
{
namespace
{

// Deliberately the text of a flush and of a destruction, too.
const char notInitialized[] = "ORVA_Resample: Estrutura de dados nao foi inicializada corretamente!\n";

bool isPolyphase(const char *config)
{
    std::array<char, 256> type;
    KTSTRING_GetStringValueFromString(config, "type", "polyphase", type.data(), int32_t{type.size()});
    return std::strcmp(type.data(), "polyphase") == 0 || std::strcmp(type.data(), "poly") == 0;
}

int32_t orderIn(const char *config)
{
    const int64_t preset = KTSETTINGS_GetIntEx(nullptr, "liborva.resample.polyphase.order=30");
    return KTSTRING_GetIntegerValueFromString(config, "order", static_cast<int32_t>(preset));
}

bool hasKnownMode(const ORVA_RESAMPLER *handle)
{
    return handle->mode == resamplePolyphase || handle->mode == resampleHold;
}

} // namespace
} // namespace orva

ORVA_RESAMPLER *ORVA_ResampleInit(int32_t inputRate, int32_t outputRate, const char *config)
{
    auto handle = inputRate >= 1 && outputRate >= 1 ? ownZeroed<ORVA_RESAMPLER>(1) : Owned<ORVA_RESAMPLER>();
    if (handle == nullptr) {
        reportInvalidParameters();
        return nullptr;
    }
    constexpr size_t configBytes = 256;
    std::array<char, configBytes + 1> lowered{}; // cut text ends in a zero, too
    if (config != nullptr)
        for (size_t i = 0; i < configBytes && config[i] != '\0'; ++i)
            lowered[i] = config[i];
    KTSTRING_Strlwr(lowered.data(), 0);

    if (isPolyphase(lowered.data())) {
        handle->mode = resamplePolyphase;
        const int32_t order = orderIn(lowered.data());
        if (order < 1) { // the handle stays, without a converter
            KTDEBUG_TerminalError(-1, "ORVA_ResampleInit: Parametros invalidos");
            return handle.release();
        }
        const bool compensates =
            KTSTRING_GetBooleanValueFromString(lowered.data(), "delaycompensation", true);
        handle->impl = newPolyphase(inputRate, outputRate, order, compensates);
    } else { // "zoh", and every name that is not known
        handle->mode = resampleHold;
        handle->impl = newHold(inputRate, outputRate);
    }
    if (handle->impl == nullptr) {
        reportInvalidParameters();
        return nullptr;
    }
    return handle.release();
}

int32_t ORVA_Resample(ORVA_RESAMPLER *handle, const float *input, float *output, int32_t count)
{
    if (handle == nullptr || !hasKnownMode(handle)) {
        KTDEBUG_Error(-1, notInitialized);
        if (handle != nullptr)
            std::exit(1);
        return -1;
    }
    if (handle->impl == nullptr)
        return -1;
    if (count < 1)
        return 0;
    if (input == nullptr || output == nullptr)
        return -1;
    if (handle->mode == resampleHold)
        return runHold(static_cast<ZohResampler *>(handle->impl), input, output, count);
    return runPolyphase(static_cast<PolyphaseResampler *>(handle->impl), input, output, count);
}

int32_t ORVA_ResampleFlushBufferSize(const ORVA_RESAMPLER *handle)
{
    if (handle == nullptr || !hasKnownMode(handle)) {
        KTDEBUG_Error(-1, notInitialized);
        return -1;
    }
    if (handle->impl == nullptr)
        return -1;
    return handle->mode == resampleHold ? 0 : static_cast<const PolyphaseResampler *>(handle->impl)->delay;
}

int32_t ORVA_ResampleFlushBuffersEx(ORVA_RESAMPLER *handle, float *output, int32_t maxCount)
{
    if (handle == nullptr || !hasKnownMode(handle)) {
        KTDEBUG_TerminalError(-1, notInitialized);
        std::exit(1);
    }
    if (handle->impl == nullptr || handle->mode == resampleHold || output == nullptr)
        return 0;
    return flushPolyphase(static_cast<PolyphaseResampler *>(handle->impl), output, maxCount);
}

int32_t ORVA_ResampleDestroy(ORVA_RESAMPLER *handle)
{
    const bool known = handle != nullptr && hasKnownMode(handle);
    if (!known)
        KTDEBUG_Error(-1, notInitialized);
    else if (handle->mode == resampleHold)
        freeHold(static_cast<ZohResampler *>(handle->impl));
    else
        freePolyphase(static_cast<PolyphaseResampler *>(handle->impl));
    std::free(handle);
    return known ? 1 : 0;
}
