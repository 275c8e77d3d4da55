// The look-ups in a configuration string.
#include <kett/KTstring.h>

#include "KTconfig_matrix.h"
#include "KTconfig_scan.h"
#include "KTnumber.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kett
{

namespace
{

bool findMatrix(const char *config, const char *key, ConfigPair &pair, int32_t &rows, int32_t &columns)
{
    return findPair(config, key, pair) && measureMatrix(pair, rows, columns);
}

bool findVector(const char *config, const char *key, ConfigPair &pair, int32_t &size)
{
    int32_t rows = 0;
    return findMatrix(config, key, pair, rows, size) && rows == 1;
}

} // namespace

} // namespace kett

using namespace kett;

int32_t KTSTRING_GetStringValueFromString(const char *config, const char *key, const char *defaultValue,
                                          char *output, int32_t size)
{
    if (output == nullptr || size <= 0)
        return 0;
    const size_t room = static_cast<size_t>(size) - 1;
    ConfigPair pair;
    std::string_view text;
    if (findPair(config, key, pair)) {
        text = pair.value.substr(0, room);
    } else if (defaultValue != nullptr) {
        size_t length = 0;
        while (length < room && defaultValue[length] != '\0')
            ++length;
        text = {defaultValue, length};
    } else {
        return 0;
    }
    std::memmove(output, text.data(), text.size()); // the default may stand in the output already
    output[text.size()] = '\0';
    return 1;
}

int32_t KTSTRING_GetIntegerValueFromString(const char *config, const char *key, int32_t defaultValue)
{
    ConfigPair pair;
    int64_t value = 0;
    if (!findPair(config, key, pair) || !parseInteger(pair.value, value) || !std::in_range<int32_t>(value))
        return defaultValue;
    return static_cast<int32_t>(value);
}

float KTSTRING_GetFloatValueFromString(const char *config, const char *key, float defaultValue)
{
    ConfigPair pair;
    float value = 0.0f;
    return findPair(config, key, pair) && parseFloat(pair.value, value) ? value : defaultValue;
}

bool KTSTRING_GetBooleanValueFromString(const char *config, const char *key, bool defaultValue)
{
    ConfigPair pair;
    bool value = false;
    return findPair(config, key, pair) && parseBoolean(pair.value, value) ? value : defaultValue;
}

int32_t KTSTRING_GetVectorSizeFromString(const char *config, const char *key, int32_t *size)
{
    ConfigPair pair;
    int32_t found = 0;
    if (!findVector(config, key, pair, found))
        return 0;
    if (size != nullptr)
        *size = found;
    return 1;
}

int32_t KTSTRING_GetDoubleVectorValuesFromString(const char *config, const char *key, double *output,
                                                 int32_t capacity)
{
    ConfigPair pair;
    int32_t size = 0;
    if (output == nullptr || !findVector(config, key, pair, size))
        return 0;
    return storeMatrix(pair, output, capacity);
}

int32_t KTSTRING_GetMatrixSizeFromString(const char *config, const char *key, int32_t *rows, int32_t *columns)
{
    ConfigPair pair;
    int32_t foundRows = 0;
    int32_t foundColumns = 0;
    if (!findMatrix(config, key, pair, foundRows, foundColumns))
        return 0;
    if (rows != nullptr)
        *rows = foundRows;
    if (columns != nullptr)
        *columns = foundColumns;
    return 1;
}

int32_t KTSTRING_GetDoubleMatrixValuesFromString(const char *config, const char *key, double *output,
                                                 int32_t rows, int32_t columns)
{
    ConfigPair pair;
    int32_t foundRows = 0;
    int32_t foundColumns = 0;
    if (output == nullptr || rows <= 0 || columns <= 0 ||
        !findMatrix(config, key, pair, foundRows, foundColumns))
        return 0;
    const int64_t room = static_cast<int64_t>(rows) * columns;
    return storeMatrix(pair, output, static_cast<int32_t>(std::min<int64_t>(room, INT32_MAX)));
}
