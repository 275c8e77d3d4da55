#include <kett/KTsettings.h>

#include "KTformat.h"
#include "KTlock.h"
#include "KTnamed.h"
#include "KTnumber.h"
#include "KTunload.h"
#include "platform/locale.h"

#include <cstdarg>
#include <cstdlib>
#include <utility>

namespace kett
{

namespace
{

struct Setting {
    Setting *next;
    char *name;
    char *value;        // stored, or null
    char *defaultValue; // set by KTSETTINGS_SetDefaultEx, or null
};

// "key=[value]" or "key=value", blanks around each part left out. Without an equals sign all is key.
struct KeyAndValue {
    explicit KeyAndValue(std::string_view text)
    {
        const size_t equals = text.find('=');
        key = trimmed(text.substr(0, equals));
        if (equals == text.npos)
            return;
        value = trimmed(text.substr(equals + 1));
        if (value.size() >= 2 && value.front() == '[' && value.back() == ']')
            value = trimmed(value.substr(1, value.size() - 2));
    }

    std::string_view key;
    std::string_view value;
};

constinit NamedTable<Setting> settings;

// The first in order that parses: the stored value, the default that was set, the default in the text.
template <class Value>
Value get(const char *keyWithDefault, bool (*parse)(std::string_view, Value &), Value otherwise)
{
    if (keyWithDefault == nullptr)
        return otherwise;
    const KeyAndValue asked(keyWithDefault);
    Value value = otherwise;
    {
        const Hold hold(Data::settings);
        if (const Setting *setting = settings.find(asked.key); setting != nullptr) {
            if (setting->value != nullptr && parse(setting->value, value))
                return value;
            if (setting->defaultValue != nullptr && parse(setting->defaultValue, value))
                return value;
        }
    }
    parse(asked.value, value);
    return value;
}

// Formats "key=value" and puts a copy of the value into `place` of the key's record.
bool set(char *Setting::*place, const char *format, va_list arguments)
{
    if (format == nullptr)
        return false;
    const FormattedText formatted(formatInCLocale, format, arguments);
    if (!formatted.isComplete)
        return false;
    const KeyAndValue given(formatted.text);
    if (given.key.empty() || given.value.empty())
        return false;
    char *value = copied(given.value);
    if (value == nullptr)
        return false;
    const Hold hold(Data::settings);
    Setting *setting = settings.findOrAdd(given.key);
    if (setting == nullptr) {
        std::free(value);
        return false;
    }
    char *before = std::exchange(setting->*place, value);
    std::free(before); // now that nothing points to it
    return true;
}

} // namespace

void discardSettings()
{
    const Hold hold(Data::settings);
    settings.removeAll([](Setting &setting) {
        std::free(setting.value);
        std::free(setting.defaultValue);
    });
}

} // namespace kett

using namespace kett;

bool KTSETTINGS_GetBoolEx(KT_SETTINGS *, const char *keyWithDefault)
{
    return get(keyWithDefault, parseBoolean, false);
}

int64_t KTSETTINGS_GetIntEx(KT_SETTINGS *, const char *keyWithDefault)
{
    return get(keyWithDefault, parseInteger, int64_t{0});
}

bool KTSETTINGS_SetDefaultEx(KT_SETTINGS *, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const bool done = set(&Setting::defaultValue, format, arguments);
    va_end(arguments);
    return done;
}

bool KTSETTINGS_SetEx(KT_SETTINGS *, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const bool done = set(&Setting::value, format, arguments);
    va_end(arguments);
    return done;
}

bool KTSETTINGS_UnsetEx(KT_SETTINGS *, const char *key)
{
    if (key == nullptr)
        return false;
    const Hold hold(Data::settings);
    Setting *setting = settings.find(trimmed(key));
    if (setting == nullptr || setting->value == nullptr)
        return false;
    std::free(setting->value);
    setting->value = nullptr;
    if (setting->defaultValue == nullptr)
        settings.remove(setting);
    return true;
}
