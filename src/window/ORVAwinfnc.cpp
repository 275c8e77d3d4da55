// The interface of the windows: creation, application, names and gains.
#include <orva/ORVAwinfnc.h>

#include "window/ORVAwinfnc_internal.h"
#include "window/kernels/ORVAwindow_kernels.h"

#include <kett/KTstring.h>

#include <algorithm>
#include <cstring>

namespace orva
{
namespace
{

const WindowDef *findType(int32_t type)
{
    for (const WindowDef &window : windows())
        if (window.type == type)
            return &window;
    return nullptr;
}

} // namespace
} // namespace orva

using namespace orva;

bool ORVA_CreateWindow(int32_t type, float *window, uint32_t length)
{
    if (window == nullptr)
        return false;
    const WindowDef *def = findType(type);
    if (def == nullptr)
        return false;
    def->generator(window, length);
    return true;
}

bool ORVA_ApplyWindow(const float *window, float *data, int32_t length)
{
    kernels<WindowKernels>().apply(window, data, length);
    return true;
}

int32_t ORVA_GetWindowType(const char *name)
{
    if (name == nullptr)
        return 0;
    const size_t length = std::strlen(name);
    for (const WindowDef &window : windows()) {
        // The longer of the two lengths makes it a comparison of the whole.
        const size_t longer = std::max(length, std::strlen(window.name));
        if (KTSTRING_CompareInsensitiveN(window.name, name, static_cast<int64_t>(longer)) == 0)
            return window.type;
    }
    return 0;
}

const char *ORVA_GetWindowName(int32_t type)
{
    const WindowDef *def = findType(type);
    return def != nullptr ? def->name : nullptr;
}

double ORVA_GetWindowNormFactor(const float *window, int32_t length)
{
    if (window == nullptr)
        return 0.0;
    double sum = 0.0;
    for (int32_t i = 0; i < length; ++i)
        sum += static_cast<double>(window[i]);
    return sum / static_cast<double>(length);
}

double ORVA_GetTwoWindowNormFactor(const float *first, const float *second, int32_t length)
{
    if (first == nullptr || second == nullptr)
        return 0.0;
    double sum = 0.0;
    for (int32_t i = 0; i < length; ++i) {
        const float product = first[i] * second[i];
        sum += static_cast<double>(product);
    }
    return sum / static_cast<double>(length);
}

int32_t ORVA_GetWindowTypeFromStringConfig(const char *config, const char *key, int32_t defaultType)
{
    char name[128];
    const char *defaultName = ORVA_GetWindowName(defaultType);
    if (KTSTRING_GetStringValueFromString(config, key, defaultName, name, sizeof name) == 0)
        return defaultType;
    return ORVA_GetWindowType(name); // a misspelt name is Rectangular, not the default
}
