// The handle: configuration, dispatch, and what is said of a handle that is none.
#include <orva/ORVAresample.h>

#include "resample/ORVAresample_internal.h"

#include <kett/KTdebug.h>
#include <kett/KTsettings.h>
#include <kett/KTstring.h>

#include <array>
#include <cstring>

// Also the text of a flush and of a destruction, which is meant.
static const char notInitialized[] = "ORVA_Resample: Estrutura de dados nao foi inicializada corretamente!\n";

void reportInvalidParameters()
{
    KTDEBUG_Error(-1, "ORVA_ResampleInit: Parametros invalidos");
}

bool growWork(double *&work, int32_t &workCapacity, int32_t capacity, int64_t count)
{
    if (work != nullptr && workCapacity >= capacity)
        return true;
    auto *grown = static_cast<double *>(std::realloc(work, static_cast<size_t>(count) * sizeof(double)));
    if (grown == nullptr)
        return false;
    work = grown;
    workCapacity = capacity;
    return true;
}

static bool isPolyphase(const char *config)
{
    std::array<char, 256> type;
    KTSTRING_GetStringValueFromString(config, "type", "polyphase", type.data(), int32_t{type.size()});
    return std::strcmp(type.data(), "polyphase") == 0 || std::strcmp(type.data(), "poly") == 0;
}

static int32_t orderIn(const char *config)
{
    const int64_t preset = KTSETTINGS_GetIntEx(nullptr, "liborva.resample.polyphase.order=30");
    return KTSTRING_GetIntegerValueFromString(config, "order", static_cast<int32_t>(preset));
}

ORVA_RESAMPLER *ORVA_ResampleInit(int32_t inputRate, int32_t outputRate, const char *config)
{
    auto *handle = inputRate >= 1 && outputRate >= 1 ? newZeroed<ORVA_RESAMPLER>(1) : nullptr;
    if (handle == nullptr) {
        reportInvalidParameters();
        return nullptr;
    }
    constexpr size_t configBytes = 256;
    std::array<char, configBytes + 1> lowered{}; // what is cut ends in a zero, too
    if (config != nullptr)
        std::memcpy(lowered.data(), config, strnlen(config, configBytes));
    KTSTRING_Strlwr(lowered.data(), 0);

    if (isPolyphase(lowered.data())) {
        handle->mode = resamplePolyphase;
        const int32_t order = orderIn(lowered.data());
        if (order < 1) { // the handle stays, without a converter
            KTDEBUG_TerminalError(-1, "ORVA_ResampleInit: Parametros invalidos");
            return handle;
        }
        const bool compensates =
            KTSTRING_GetBooleanValueFromString(lowered.data(), "delaycompensation", true);
        handle->impl = newPolyphase(inputRate, outputRate, order, compensates);
    } else { // "zoh", and every name that is not known
        handle->mode = resampleZoh;
        handle->impl = newZoh(inputRate, outputRate);
    }
    if (handle->impl == nullptr) {
        reportInvalidParameters();
        std::free(handle);
        return nullptr;
    }
    return handle;
}

static bool hasKnownMode(const ORVA_RESAMPLER *handle)
{
    return handle->mode == resamplePolyphase || handle->mode == resampleZoh;
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
    if (handle->mode == resampleZoh)
        return runZoh(static_cast<ZohResampler *>(handle->impl), input, output, count);
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
    return handle->mode == resampleZoh ? 0 : static_cast<const PolyphaseResampler *>(handle->impl)->delay;
}

int32_t ORVA_ResampleFlushBuffersEx(ORVA_RESAMPLER *handle, float *output, int32_t maxCount)
{
    if (handle == nullptr || !hasKnownMode(handle)) {
        KTDEBUG_TerminalError(-1, notInitialized);
        std::exit(1);
    }
    if (handle->impl == nullptr || handle->mode == resampleZoh || output == nullptr)
        return 0;
    return flushPolyphase(static_cast<PolyphaseResampler *>(handle->impl), output, maxCount);
}

int32_t ORVA_ResampleDestroy(ORVA_RESAMPLER *handle)
{
    const bool known = handle != nullptr && hasKnownMode(handle);
    if (!known)
        KTDEBUG_Error(-1, notInitialized);
    else if (handle->mode == resampleZoh)
        freeZoh(static_cast<ZohResampler *>(handle->impl));
    else
        freePolyphase(static_cast<PolyphaseResampler *>(handle->impl));
    std::free(handle);
    return known ? 1 : 0;
}
