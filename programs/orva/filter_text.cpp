#include "filter_text.h"

#include "failure.h"
#include "suggestion.h"

#include <kett/KTstring.h>

#include <cstring>
#include <vector>

namespace orva
{
namespace
{

enum class Kind { text, integer, real, vector, matrix };

struct Key {
    const char *name;
    Kind kind;
    double least, most;  // of a number, both included
    const char *meaning; // for the message: "a whole number from 1 to 1000"
};

std::vector<Key> keysAt(int rate)
{
    const char *edge = "a frequency below half the sampling rate";
    const char *decibels = "a number of decibels above 0";
    const double highest = rate / 2.0 - 0.5;
    return {{"type", Kind::text, 0, 0, ""},
            {"approximation", Kind::text, 0, 0, ""},
            {"order", Kind::integer, 1, 1000, "a whole number from 1 to 1000"},
            {"fpass", Kind::real, 0, highest, edge},
            {"fpass1", Kind::real, 0, highest, edge},
            {"fpass2", Kind::real, 0, highest, edge},
            {"fstop", Kind::real, 0, highest, edge},
            {"fstop1", Kind::real, 0, highest, edge},
            {"fstop2", Kind::real, 0, highest, edge},
            {"Ap", Kind::real, 1e-6, 1000, decibels},
            {"As", Kind::real, 1e-6, 1000, decibels},
            {"gain", Kind::real, 0, 1e6, "a number from 0 to 1000000"},
            {"biquads", Kind::matrix, 0, 0, "a matrix such as [a1 a2 b0 b1 b2; a1 a2 b0 b1 b2]"},
            {"numerator", Kind::vector, 0, 0, "a vector such as [1 -1]"},
            {"denominator", Kind::vector, 0, 0, "a vector such as [1 -0.9]"}};
}

const char *const blanks = " \t\n\v\f\r";
const char *const separators = " \t\n\v\f\r;,";
const char *const notInKey = " \t\n\v\f\r;,=\"[]";

// The end of the value that starts at `text`, or null if there is none there.
const char *valueEnd(const char *text)
{
    if (*text == '"') {
        const char *quote = std::strchr(text + 1, '"');
        return quote != nullptr ? quote + 1 : nullptr;
    }
    if (*text == '[') {
        int depth = 0;
        for (; *text != '\0'; ++text) {
            depth += static_cast<int>(*text == '[') - static_cast<int>(*text == ']');
            if (depth == 0)
                return text + 1;
        }
        return nullptr;
    }
    const size_t length = std::strcspn(text, separators);
    return length > 0 ? text + length : nullptr;
}

void checkKey(const std::string &name, const std::vector<Key> &keys)
{
    std::vector<std::string> names;
    std::string list;
    for (const Key &key : keys) {
        if (name == key.name)
            return;
        names.emplace_back(key.name);
        list += (list.empty() ? "" : ", ") + names.back();
    }
    failUse("there is no key '" + name + "'" + suggestion(name, names) + "; the keys are " + list);
}

// What looks up one key passes over whatever is no pair, so the text is first read as a whole.
void checkPairs(const char *text, const std::vector<Key> &keys)
{
    while (*(text += std::strspn(text, separators)) != '\0') {
        const size_t length = std::strcspn(text, notInKey);
        const char *equals = text + length + std::strspn(text + length, blanks);
        const char *end = nullptr;
        if (length > 0 && *equals == '=')
            end = valueEnd(equals + 1 + std::strspn(equals + 1, blanks));
        if (end == nullptr || (*end != '\0' && std::strchr(separators, *end) == nullptr))
            failUse("there is no key=value at '" + std::string(text) + "'");
        checkKey(std::string(text, length), keys);
        text = end;
    }
}

// A text that is no number gives the default, whichever it is.
bool holds(const Key &key, const char *config)
{
    if (key.kind == Kind::integer) {
        const int32_t value = KTSTRING_GetIntegerValueFromString(config, key.name, 0);
        return value == KTSTRING_GetIntegerValueFromString(config, key.name, 1) && value >= key.least &&
               value <= key.most;
    }
    if (key.kind == Kind::real) {
        const float value = KTSTRING_GetFloatValueFromString(config, key.name, 0.0F);
        return value == KTSTRING_GetFloatValueFromString(config, key.name, 1.0F) &&
               value >= static_cast<float>(key.least) && value <= static_cast<float>(key.most);
    }
    if (key.kind == Kind::vector)
        return KTSTRING_GetVectorSizeFromString(config, key.name, nullptr) != 0;
    if (key.kind == Kind::matrix)
        return KTSTRING_GetMatrixSizeFromString(config, key.name, nullptr, nullptr) != 0;
    return true;
}

} // namespace

void checkFilterText(const std::string &text, int rate)
{
    const char *config = text.c_str();
    const auto keys = keysAt(rate);
    checkPairs(config, keys);
    for (const Key &key : keys) {
        char value[128];
        if (KTSTRING_GetStringValueFromString(config, key.name, nullptr, value, sizeof value) != 0 &&
            !holds(key, config))
            failUse(std::string(key.name) + "=" + value + " is not " + key.meaning);
    }
    int32_t rows = 0;
    int32_t columns = 0;
    if (KTSTRING_GetMatrixSizeFromString(config, "biquads", &rows, &columns) && columns != 5)
        failUse("a row of biquads has 5 numbers, a1, a2, b0, b1 and b2, not " + std::to_string(columns));
}

} // namespace orva
